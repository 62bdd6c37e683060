// What a tile's cut needs of a geometry, worked out before the component asks for it.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "tiling/vector/geometry/Split.h"

namespace orvo::tiling {

struct Foretold {
    struct Visit {
        std::size_t column, row;  ///< from 0
        std::shared_ptr<geos::Geometry> around;
    };
    geos::Bounds whole;         ///< of the grid; it is none where nothing is foretold
    std::vector<Visit> visits;  ///< the tiles that the geometry is to be cut at, in order
    std::vector<Visit> mended;  ///< likewise of its mended form, if it has proved to need one
};

/// The tiles that a geometry must be cut at, so that those of a run's own part get what they get of a whole
/// run: a line's sections on an edge go by the tile beyond it, and a border that crosses itself may be mended
/// at one tile for the next.
geos::TileSpan SpanToVisit(const geos::Geometry& geometry, const geos::TileGrid& edges,
                           const geos::TileSpan& own);

/// Asks a geometry what the component will, at each tile. What fails at one is left to be asked. Nothing is
/// foretold of points, and of what meets too many tiles to keep the answers. May be called on any thread.
/// Fails with RuntimeError where the work has to end (WorkLimit).
Foretold Foretell(const std::shared_ptr<geos::Geometry>& geometry, const geos::TileGrid& edges,
                  const geos::TileSpan& own);

}  // namespace orvo::tiling
