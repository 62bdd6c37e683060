// The sections of a line that lie on the edges of tiles.
#pragma once

#include <functional>
#include <map>
#include <utility>

#include "tiling/vector/geometry/Split.h"

namespace orvo::tiling {

/// Column and row, counted from 1.
using TilePair = std::pair<Long, Long>;

/// What lies on edges that no tile beside them has, as lines of the same kind, each by the tile north-east of
/// it; along the north and east borders of the grid, by the tile inside.
/// @param holds whether a tile has its share of the line, its edges included
std::map<TilePair, geos::Shape> EdgeSections(const geos::Shape& line, const geos::TileGrid& edges,
                                             const std::function<bool(Long column, Long row)>& holds);

}  // namespace orvo::tiling
