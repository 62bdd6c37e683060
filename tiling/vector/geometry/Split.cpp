#include "tiling/vector/geometry/Split.h"

#include <algorithm>

#include "tiling/vector/geometry/Relations.h"

namespace orvo::geos {
namespace {

/// How far around a range the geometry stays as it is, as a share of the range's size: more than a cut in
/// doubt looks beyond its tile.
constexpr double kMargin = 0.25;

struct Span {
    std::size_t begin, end;
    std::size_t Size() const { return end - begin; }
    std::size_t Middle() const { return begin + Size() / 2; }
};

Span Meeting(const std::vector<Interval>& intervals, double low, double high) {
    const auto begin = std::ranges::lower_bound(intervals, low, {}, &Interval::high);
    const auto end = std::ranges::upper_bound(intervals, high, {}, &Interval::low);
    return {static_cast<std::size_t>(begin - intervals.begin()),
            static_cast<std::size_t>(std::max(begin, end) - intervals.begin())};
}

class Splitter {
  public:
    Splitter(const TileGrid& grid, const TileVisit& visit) : grid_(grid), visit_(visit) {}

    void Split(const std::shared_ptr<Geometry>& geometry, Span columns, Span rows) {
        if (columns.Size() == 0 || rows.Size() == 0 || geometry->IsEmpty()) return;
        if (columns.Size() * rows.Size() <= kFewTiles) return VisitAll(geometry, columns, rows);
        const Bounds range = RangeOf(columns, rows);
        const auto around = geometry->ReducedTo(
            range.GrownBy(kMargin * (range.xMax - range.xMin), kMargin * (range.yMax - range.yMin)));
        if (around->IsEmpty()) return;
        if (IsOneSided(*around, range)) {
            if (around->Covers(range)) VisitAll(around, columns, rows);
            return;
        }
        if (columns.Size() >= rows.Size()) {
            Split(around, {columns.begin, columns.Middle()}, rows);
            Split(around, {columns.Middle(), columns.end}, rows);
        } else {
            Split(around, columns, {rows.begin, rows.Middle()});
            Split(around, columns, {rows.Middle(), rows.end});
        }
    }

  private:
    static constexpr std::size_t kFewTiles = 2;  ///< not worth a thinning of their own

    /// All of the range lies in the areas, or all of it outside.
    static bool IsOneSided(const Geometry& around, const Bounds& range) {
        return around.GeometryType() == GeometryType::Polygon &&
               EntersInside(around.Coordinates(), range) == Finding::No;
    }

    Bounds RangeOf(Span columns, Span rows) const {
        return {grid_.columns[columns.begin].low, grid_.rows[rows.begin].low,
                grid_.columns[columns.end - 1].high, grid_.rows[rows.end - 1].high};
    }

    void VisitAll(const std::shared_ptr<Geometry>& around, Span columns, Span rows) {
        for (std::size_t row = rows.begin; row < rows.end; ++row)
            for (std::size_t column = columns.begin; column < columns.end; ++column)
                if (around->Coordinates().MayMeet(RangeOf({column, column + 1}, {row, row + 1})))
                    visit_(column, row, around);
    }

    const TileGrid& grid_;
    const TileVisit& visit_;
};

}  // namespace

void ForEachTile(const std::shared_ptr<Geometry>& geometry, const TileGrid& grid, const TileVisit& visit) {
    if (geometry->GeometryType() == GeometryType::Other || geometry->IsEmpty()) return;
    const Bounds& extent = geometry->Extent();
    Splitter(grid, visit)
        .Split(geometry, Meeting(grid.columns, extent.xMin, extent.xMax),
               Meeting(grid.rows, extent.yMin, extent.yMax));
}

}  // namespace orvo::geos
