#include "tiling/raster/RasterGrid.h"

#include <limits>
#include <optional>
#include <sstream>
#include <string>

#include "platform/RuntimeError.h"
#include "support/Arithmetic.h"
#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

/// Nothing where they do not fit into 32 bits; none for a tile that is smaller than half a cell.
std::optional<Long> TilePixels(Long size, Long pixels, double cell) {
    try {
        return size == -1 ? pixels : RoundUp(Divide(size, cell));
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

Long RequirePixels(Long size, Long pixels, double cell) {
    const std::string tile = "a tile of " + std::to_string(size) + " map units has ";
    const auto found = TilePixels(size, pixels, cell);
    if (!found) throw UsageError(tile + "more pixels than 32 bits count; use -1 for the whole axis");
    if (*found < 1) {
        std::ostringstream text;
        text << tile << "no pixels: a cell of the layer has " << cell
             << " map units; choose a greater size, or -1 for the whole axis";
        throw UsageError(text.str());
    }
    return *found;
}

std::int64_t TilesOn(Long pixels, Long tile) {
    return (std::int64_t{pixels} + tile - 1) / tile;
}

}  // namespace

Grid PlanGrid(IRaster& raster, Long width, Long height) {
    Grid grid;
    const Point cell = raster.MeanCellSize();
    grid.tileWidth = RequirePixels(width, raster.Width(), cell.X);
    grid.tileHeight = RequirePixels(height, raster.Height(), cell.Y);
    grid.columns = TilesOn(raster.Width(), grid.tileWidth);
    grid.rows = TilesOn(raster.Height(), grid.tileHeight);
    return grid;
}

Long SmallestTileSize(IRaster& raster) {
    const Point cell = raster.MeanCellSize();
    const auto fits = [&](Long size) {
        const auto width = TilePixels(size, raster.Width(), cell.X);
        const auto height = TilePixels(size, raster.Height(), cell.Y);
        if (width == 0 || height == 0) return false;
        // So large that one tile covers the axis, if only its pixels could be counted.
        return TilesOn(raster.Width(), width.value_or(raster.Width())) *
                   TilesOn(raster.Height(), height.value_or(raster.Height())) <=
               kMostTiles;
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
