// What would surprise the user of a run.
#pragma once

#include <string>
#include <vector>

#include "platform/gdal/TileWriter.h"
#include "tiling/raster/RasterJob.h"

namespace orvo::tiling {

/// The format of the tiles. With a converter it need not be one that this library writes: then it has no
/// driver. Fails with UsageError.
gdal::RasterFormat FormatOf(const RasterJob& job);

/// Whatever the tiles do not keep of the source, known beforehand.
/// @param writer of the tiles, or of what a converter gets
std::vector<std::string> FormatNotices(gdal::RasterLayer& layer, const RasterJob& job,
                                       const gdal::TileWriter& writer, const std::string& extension);

/// How cells were brought to 8 bits; empty where they were not, or the source cannot be read.
std::string StretchNotice(gdal::TileWriter& writer);

}  // namespace orvo::tiling
