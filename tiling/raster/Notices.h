// What would surprise the user of a run, said beforehand.
#pragma once

#include <string>
#include <vector>

#include "platform/gdal/RasterLayer.h"
#include "tiling/raster/RasterJob.h"

namespace orvo::tiling {

/// The extension, in lower case, that decides whether the run cuts the source file itself; empty inside a
/// container.
std::string SourceExtension(gdal::RasterLayer& layer, const RasterJob& job);

/// Fails with UsageError where no tile could ever be written in the format that was asked for.
void CheckFormat(const std::string& sourceExtension, const RasterJob& job);

/// Whatever the tiles will not keep of the source, and a format that is not the one asked for.
std::vector<std::string> FormatNotices(gdal::RasterLayer& layer, const RasterJob& job);

}  // namespace orvo::tiling
