// One geometry laid into the tiles that hold it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tiling/vector/Foretelling.h"
#include "tiling/vector/VectorGrid.h"
#include "tiling/vector/geometry/Geometry.h"

namespace orvo::tiling {

/// Column and row from 1.
using PieceSink = std::function<void(Long column, Long row, const geos::Geometry& piece)>;

class GeometryCutter {
  public:
    /// @param strict tiles that an area covers whole get nothing from it
    GeometryCutter(VectorGrid& grid, bool strict, PieceSink sink)
        : grid_(grid), strict_(strict), sink_(std::move(sink)) {}

    /// Gives the sink the pieces of the geometry, tile by tile. A single point goes to the tile that the grid
    /// locates it in; an area that covers a tile gives its rectangle; a section of a line that lies on a
    /// tile's edge, and that no tile beside it holds, goes to the tile north-east of it. All else is as
    /// `Clip` gives it. Tiles beyond the grid's own part get nothing. Fails as the geometry does.
    /// @param foretold of the same geometry; counts where the grid's edges are still the same
    /// @return the number of pieces
    std::size_t Cut(const std::shared_ptr<geos::Geometry>& geometry, const Foretold& foretold = {});

    /// Why a part of the last geometry stands nowhere: its border cannot be mended; empty where nothing was
    /// lost.
    const std::string& Refusal() const { return refusal_; }
    /// Pieces of the last geometry that the sink has got; also after a failure.
    std::size_t Placed() const { return given_; }
    /// Tiles that got nothing from an area that covers them, so far.
    std::int64_t CoveredLeftOut() const { return coveredLeftOut_; }

  private:
    using Numbers = std::pair<Long, Long>;

    void CutAtTiles(const std::shared_ptr<geos::Geometry>& geometry,
                    const std::vector<Foretold::Visit>* foretold);
    bool IsOwn(Long column, Long row) const;
    void CutAtTile(Long column, Long row, const std::shared_ptr<geos::Geometry>& around);
    void AddSections(const geos::Shape& line);
    void Give(Long column, Long row, const geos::Geometry& piece);

    VectorGrid& grid_;
    bool strict_;
    PieceSink sink_;
    std::vector<Numbers> placed_;   ///< tiles that the current geometry has a piece for
    std::size_t given_ = 0;         ///< of those, to tiles of the own part
    std::vector<Numbers> leftOut_;  ///< tiles that it covers, and that got nothing from it
    std::string refusal_;
    std::int64_t coveredLeftOut_ = 0;
};

}  // namespace orvo::tiling
