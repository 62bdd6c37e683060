// Which cells of a raster a tile shows.
#pragma once

#include <array>

#include "platform/Geometry.h"
#include "platform/Utility.h"

namespace orvo::raster {

/// Part of a raster in cells from its top left corner, and the size in pixels that it is shown at.
struct TileWindow {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    int columns = 0;
    int rows = 0;

    /// Whether the window takes whole cells one to one; else it is resampled.
    bool IsExact() const;
    bool operator==(const TileWindow&) const = default;
};

/// Whole cells, one to one.
TileWindow ExactWindow(int column, int row, int columns, int rows);

/// The part of a raster of `rasterColumns` × `rasterRows` cells inside an envelope. Edges within a millionth
/// of a cell of a cell's edge are moved there; what reaches past the raster is cut off. Fails with number 5
/// and a text where the size is not positive or the envelope misses the raster.
/// @param geoTransform left edge, cell width, 0, top edge, 0, minus cell height, in map units
TileWindow WindowOf(const std::array<double, 6>& geoTransform, int rasterColumns, int rasterRows,
                    const IEnvelope& envelope, Long columns, Long rows);

/// Cuts a window back to a raster's size; false, and unchanged, where nothing would be left.
bool CutBack(PixelWindow& window, int columns, int rows);

}  // namespace orvo::raster
