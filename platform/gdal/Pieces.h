// Walking over a whole raster in pieces that fit its blocks and a small memory.
#pragma once

#include <functional>

#include "platform/gdal/ReadWindow.h"

namespace orvo::gdal {

/// Calls `visit` for exact windows that cover the raster once, row by row, each of at most a million cells or
/// so.
void ForEachPiece(GDALDataset& dataset, const std::function<void(const TileWindow&)>& visit);

}  // namespace orvo::gdal
