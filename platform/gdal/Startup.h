// The start of the raster library.
#pragma once

namespace orvo::gdal {

/// Registers the library's drivers and takes its messages off standard error. Only the first call does
/// anything; from any thread.
void Start();

}  // namespace orvo::gdal
