// One geometry against many tiles.
#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "tiling/vector/geometry/Geometry.h"

namespace orvo::geos {

/// The tiles' edges along one axis, in rising order; neighbours may differ by rounding.
struct Interval {
    double low;
    double high;
};

/// A grid of tiles: column by column from the west, row by row from the south.
struct TileGrid {
    std::vector<Interval> columns;
    std::vector<Interval> rows;
};

Bounds WholeOf(const TileGrid& grid);
/// The outer edges moved outwards, so that the grid holds the bounds.
TileGrid ReachingOut(TileGrid grid, const Bounds& bounds);

/// Columns and rows from 0, each from the first to before the second.
struct TileSpan {
    std::size_t west = 0, east = std::numeric_limits<std::size_t>::max();
    std::size_t south = 0, north = std::numeric_limits<std::size_t>::max();

    bool Holds(std::size_t column, std::size_t row) const {
        return column >= west && column < east && row >= south && row < north;
    }
};

/// Column and row count from 0.
///
/// `around` is the geometry thinned out around the tile: relating it to the tile and cutting it to the tile
/// gives what the whole geometry gives, vertex by vertex; only a ring may start at another one.
using TileVisit =
    std::function<void(std::size_t column, std::size_t row, const std::shared_ptr<Geometry>& around)>;

/// Calls `visit` once for each tile that the geometry reaches into or covers, and perhaps for some that it
/// only touches or just misses; leaves out the tiles that it is nowhere near. The grid is halved again and
/// again, so that no tile walks all vertices. Geometries of type `Other` visit no tile.
/// @param span only the tiles in it are visited, in the same way as among all
void ForEachTile(const std::shared_ptr<Geometry>& geometry, const TileGrid& grid, const TileSpan& span,
                 const TileVisit& visit);

/// The tiles that the bounds meet.
TileSpan TilesMeeting(const TileGrid& grid, const Bounds& bounds);

}  // namespace orvo::geos
