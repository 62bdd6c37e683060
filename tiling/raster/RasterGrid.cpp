#include "tiling/raster/RasterGrid.h"

#include <limits>
#include <string>

#include "platform/RuntimeError.h"
#include "support/Arithmetic.h"
#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

Long TilePixels(Long size, Long pixels, double cell) {
    try {
        return size == -1 ? pixels : RoundUp(Divide(size, cell));
    } catch (const RuntimeError&) {
        throw UsageError("a tile of " + std::to_string(size) +
                         " map units has more pixels than 32 bits count; use -1 "
                         "for the whole axis");
    }
}

std::int64_t TilesOn(Long pixels, Long tile) {
    return (std::int64_t{pixels} + tile - 1) / tile;
}

}  // namespace

Grid PlanGrid(IRaster& raster, Long width, Long height) {
    Grid grid;
    const Point cell = raster.MeanCellSize();
    grid.tileWidth = TilePixels(width, raster.Width(), cell.X);
    grid.tileHeight = TilePixels(height, raster.Height(), cell.Y);
    grid.columns = TilesOn(raster.Width(), grid.tileWidth);
    grid.rows = TilesOn(raster.Height(), grid.tileHeight);
    return grid;
}

Long SmallestTileSize(IRaster& raster) {
    const auto fits = [&](Long size) {
        try {
            return PlanGrid(raster, size, size).Count() <= kMostTiles;
        } catch (const UsageError&) {
            return true;  // so large that one tile covers the raster, if only its pixels could be counted
        }
    };
    Long low = 1;
    Long high = std::numeric_limits<Long>::max();
    if (!fits(high)) return -1;
    while (low < high) {
        const Long middle = low + (high - low) / 2;
        if (fits(middle)) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

}  // namespace orvo::tiling
