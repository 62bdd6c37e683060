// Copying a part of a raster into a TIFF as it is.
#pragma once

#include "platform/gdal/FileInMemory.h"
#include "platform/gdal/ReadWindow.h"

namespace orvo::gdal {

/// Whether the copy says where it lies, in the file itself.
enum class Place { Forget, Keep };

/// Copies a window with all bands, their type, interpretation, palette, nodata and mask into an uncompressed
/// TIFF. Bands of different types get the one type that holds them all.
void CopyAsTiff(GDALDataset& source, const TileWindow& window, Place place, const FileInMemory& file);

}  // namespace orvo::gdal
