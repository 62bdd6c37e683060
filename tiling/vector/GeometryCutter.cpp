#include "tiling/vector/GeometryCutter.h"

#include <algorithm>

#include "tiling/vector/EdgeSections.h"
#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::tiling {

std::size_t GeometryCutter::Cut(const std::shared_ptr<geos::Geometry>& geometry, const Foretold& foretold) {
    placed_.clear();
    leftOut_.clear();
    refusal_.clear();
    given_ = 0;
    if (geometry->GeometryType() == GeometryType::Point) {
        const TileNumbers tile = grid_.Locate(geometry);
        if (tile.column > 0) Give(tile.column, tile.row, *geometry);
        return given_;
    }
    const bool isKnown = foretold.whole == grid_.Whole();
    CutAtTiles(geometry, isKnown ? &foretold.visits : nullptr);
    // What is mended is quicker to cut: the rest of the tiles get it.
    if (const auto mended = geometry->Mended()) CutAtTiles(mended, isKnown ? &foretold.mended : nullptr);
    refusal_ = geometry->Refusal();
    if (geometry->GeometryType() == GeometryType::Polyline) AddSections(geometry->Coordinates());
    return given_;
}

/// Leaves out the tiles that have got their pieces, and ends when the geometry proves to need mending; what
/// is foretold ends there anyway.
void GeometryCutter::CutAtTiles(const std::shared_ptr<geos::Geometry>& geometry,
                                const std::vector<Foretold::Visit>* foretold) {
    std::vector<Numbers> done = placed_;
    done.insert(done.end(), leftOut_.begin(), leftOut_.end());
    std::ranges::sort(done);
    const auto visit = [&](std::size_t x, std::size_t y, const std::shared_ptr<geos::Geometry>& around) {
        const Numbers tile{static_cast<Long>(x) + 1, static_cast<Long>(y) + 1};
        if (!std::ranges::binary_search(done, tile)) CutAtTile(tile.first, tile.second, around);
    };
    if (foretold != nullptr) {
        for (const auto& [column, row, around] : *foretold) {
            geos::WorkLimit::Require();
            visit(column, row, around);
        }
        return;
    }
    const geos::TileSpan span = SpanToVisit(*geometry, grid_.Edges(), grid_.Own());
    geos::ForEachTile(geometry, grid_.Edges(), span, [&](std::size_t x, std::size_t y, const auto& around) {
        geos::WorkLimit::Require();
        if (!geometry->Mended() && geometry->Refusal().empty()) visit(x, y, around);
    });
}

void GeometryCutter::CutAtTile(Long column, Long row, const std::shared_ptr<geos::Geometry>& around) {
    const auto piece = std::dynamic_pointer_cast<geos::Geometry>(grid_.Tiles().Clip(column, row, around));
    if (piece) return piece->IsEmpty() ? void() : Give(column, row, *piece);
    if (around->GeometryType() != GeometryType::Polygon || !around->Covers(grid_.BoundsOf(column, row)))
        return;
    if (strict_) {
        coveredLeftOut_ += IsOwn(column, row) ? 1 : 0;
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
    if (!IsOwn(column, row)) return;
    ++given_;
    sink_(column, row, piece);
}

bool GeometryCutter::IsOwn(Long column, Long row) const {
    return grid_.Own().Holds(static_cast<std::size_t>(column) - 1, static_cast<std::size_t>(row) - 1);
}

}  // namespace orvo::tiling
