// The tiles over a vector layer, ready for use.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/Vector.h"
#include "tilevector/clsTileVector.h"
#include "tiling/Parts.h"
#include "tiling/output/PlacedTile.h"
#include "tiling/vector/GridPlan.h"
#include "tiling/vector/VectorJob.h"
#include "tiling/vector/geometry/Split.h"

namespace orvo::tiling {

/// A tile by its numbers, counted from 1: columns from the west, rows from the south.
struct TileNumbers {
    Long column = 0;
    Long row = 0;
    bool onEdge = false;  ///< the point stands on an edge of the tile
};

class VectorGrid {
  public:
    /// Takes the layer's extent, which goes up to whole map units to the east and north: the grid counts in
    /// those, and would leave a strip without tiles. Fails with UsageError where the tiles are too many.
    VectorGrid(const std::shared_ptr<ILayer>& layer, const TileSizes& sizes, const std::string& prefix);

    const GridPlan& Plan() const { return plan_; }
    clsTileVector& Tiles() { return tiles_; }
    /// The tiles' edges. Neighbours have theirs in common.
    const geos::TileGrid& Edges() const { return edges_; }
    /// Leaves all tiles but those of a part to others. Fails with UsageError where the parts are too many.
    void TakePart(const PartNumber& part);
    /// The tiles that the run cuts.
    const geos::TileSpan& Own() const { return own_; }
    /// Fails with RunError where there is none.
    std::shared_ptr<IEnvelope> TileAt(Long column, Long row);
    geos::Bounds BoundsOf(Long column, Long row) const;
    geos::Bounds Whole() const;
    /// The tile's name, without extension.
    std::string NameOf(Long column, Long row) { return tiles_.GetTileTStream(column, row); }

    /// Moves the outer edges of the tiles along the border outwards, so that the grid holds `bounds`.
    void ReachOut(const geos::Bounds& bounds);

    /// The tile that `IsInside` finds for a point; for one on an edge, the tile north-east of it, or the last
    /// one along the north and east borders of the grid. Columns and rows of 0 where no tile holds it.
    TileNumbers Locate(const std::shared_ptr<geos::Geometry>& point);

  private:
    void Configure(const std::shared_ptr<ILayer>& layer);
    void CollectEdges();
    void SetHeights();
    void SetEdges(IEnvelope& tile, Long column, Long row) const;

    GridPlan plan_;  ///< first: a grid that is given up before its tiles are there tells of a failure
    bool byCounts_;
    clsTileVector tiles_;
    geos::TileGrid edges_;
    geos::TileSpan own_;
};

/// The interval with the place, edges counting to the one above; the last one also holds its upper edge.
std::size_t IntervalOf(const std::vector<geos::Interval>& intervals, double place);

}  // namespace orvo::tiling
