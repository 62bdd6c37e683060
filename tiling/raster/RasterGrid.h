// The grid that a run will walk, known beforehand.
#pragma once

#include <cstdint>

#include "platform/Raster.h"

namespace orvo::tiling {

constexpr std::int64_t kMostTiles = 999;

struct Grid {
    Long tileWidth = 0;  ///< pixels
    Long tileHeight = 0;
    std::int64_t columns = 0;
    std::int64_t rows = 0;
    std::int64_t Count() const { return columns * rows; }
};

/// @param width, height of a tile in map units, −1 for the whole axis
/// Fails with UsageError where a tile's size in pixels is 0 or does not fit into 32 bits.
Grid PlanGrid(IRaster& raster, Long width, Long height);

/// The smallest size of square tiles, in map units, that gives at most kMostTiles; −1 where only the whole
/// raster does.
Long SmallestTileSize(IRaster& raster);

}  // namespace orvo::tiling
