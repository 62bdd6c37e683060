#include "tiling/vector/GeometryCutter.h"

#include <algorithm>

#include "tiling/vector/EdgeSections.h"
#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::tiling {

std::size_t GeometryCutter::Cut(const std::shared_ptr<geos::Geometry>& geometry) {
    placed_.clear();
    leftOut_.clear();
    refusal_.clear();
    if (geometry->GeometryType() == GeometryType::Point) {
        const TileNumbers tile = grid_.Locate(geometry);
        if (tile.column > 0) Give(tile.column, tile.row, *geometry);
        return placed_.size();
    }
    CutAtTiles(geometry);
    // What is mended is quicker to cut: the rest of the tiles get it.
    if (const auto mended = geometry->Mended()) CutAtTiles(mended);
    refusal_ = geometry->Refusal();
    if (geometry->GeometryType() == GeometryType::Polyline) AddSections(geometry->Coordinates());
    return placed_.size();
}

/// Leaves out the tiles that have got their pieces, and ends when the geometry proves to need mending.
void GeometryCutter::CutAtTiles(const std::shared_ptr<geos::Geometry>& geometry) {
    std::vector<Numbers> done = placed_;
    done.insert(done.end(), leftOut_.begin(), leftOut_.end());
    std::ranges::sort(done);
    geos::ForEachTile(geometry, grid_.Edges(),
                      [&](std::size_t x, std::size_t y, const std::shared_ptr<geos::Geometry>& around) {
                          geos::WorkLimit::Require();
                          const Numbers tile{static_cast<Long>(x) + 1, static_cast<Long>(y) + 1};
                          const bool isOver = geometry->Mended() != nullptr || !geometry->Refusal().empty();
                          if (!isOver && !std::ranges::binary_search(done, tile))
                              CutAtTile(tile.first, tile.second, around);
                      });
}

void GeometryCutter::CutAtTile(Long column, Long row, const std::shared_ptr<geos::Geometry>& around) {
    const auto piece = std::dynamic_pointer_cast<geos::Geometry>(grid_.Tiles().Clip(column, row, around));
    if (piece) return piece->IsEmpty() ? void() : Give(column, row, *piece);
    if (around->GeometryType() != GeometryType::Polygon || !around->Covers(grid_.BoundsOf(column, row)))
        return;
    if (strict_) {
        ++coveredLeftOut_;
        leftOut_.emplace_back(column, row);
        return;
    }
    const auto covered = std::dynamic_pointer_cast<geos::Geometry>(around->Clone());
    covered->Clip(grid_.TileAt(column, row));
    if (!covered->IsEmpty()) Give(column, row, *covered);
}

void GeometryCutter::AddSections(const geos::Shape& line) {
    std::ranges::sort(placed_);
    const auto holds = [&, count = placed_.size()](Long column, Long row) {
        return std::binary_search(placed_.begin(), placed_.begin() + static_cast<std::ptrdiff_t>(count),
                                  Numbers{column, row});
    };
    for (auto& [tile, shape] : EdgeSections(line, grid_.Edges(), holds))
        Give(tile.first, tile.second, *geos::Geometry::Make(std::move(shape)));
}

void GeometryCutter::Give(Long column, Long row, const geos::Geometry& piece) {
    placed_.emplace_back(column, row);
    sink_(column, row, piece);
}

}  // namespace orvo::tiling
