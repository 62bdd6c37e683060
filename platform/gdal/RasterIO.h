// Reading and writing pixels through the raster library.
#pragma once

#include <memory>

#include "platform/RasterIO.h"

namespace orvo::gdal {

/// A new object for one conversion service. Its layers must come from OpenRasterLayer. Formats: PNG, JPEG,
/// GIF, BMP and TIFF by the target's extension; any other extension gives a TIFF of 8 bits beside the target.
///
/// A tif target keeps the source's bands, type, palette, nodata and place; LayerReader.h says what the others
/// show. While it works it sets the library's block cache, which the process shares.
std::shared_ptr<IRasterIO> NewRasterIO();

}  // namespace orvo::gdal
