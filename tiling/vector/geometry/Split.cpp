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
    Splitter(const TileGrid& grid, const TileSpan& wanted, const TileVisit& visit)
        : grid_(grid), wanted_(wanted), visit_(visit) {}

    void Split(const std::shared_ptr<Geometry>& geometry, Span columns, Span rows) {
        if (columns.Size() == 0 || rows.Size() == 0 || geometry->IsEmpty()) return;
        if (columns.begin >= wanted_.east || columns.end <= wanted_.west || rows.begin >= wanted_.north ||
            rows.end <= wanted_.south)
            return;
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
                if (wanted_.Holds(column, row) &&
                    around->Coordinates().MayMeet(RangeOf({column, column + 1}, {row, row + 1})))
                    visit_(column, row, around);
    }

    const TileGrid& grid_;
    const TileSpan& wanted_;
    const TileVisit& visit_;
};

}  // namespace

Bounds WholeOf(const TileGrid& grid) {
    return {grid.columns.front().low, grid.rows.front().low, grid.columns.back().high, grid.rows.back().high};
}

TileGrid ReachingOut(TileGrid grid, const Bounds& bounds) {
    grid.columns.front().low = std::min(grid.columns.front().low, bounds.xMin);
    grid.columns.back().high = std::max(grid.columns.back().high, bounds.xMax);
    grid.rows.front().low = std::min(grid.rows.front().low, bounds.yMin);
    grid.rows.back().high = std::max(grid.rows.back().high, bounds.yMax);
    return grid;
}

void ForEachTile(const std::shared_ptr<Geometry>& geometry, const TileGrid& grid, const TileSpan& span,
                 const TileVisit& visit) {
    if (geometry->GeometryType() == GeometryType::Other || geometry->IsEmpty()) return;
    const TileSpan met = TilesMeeting(grid, geometry->Extent());
    Splitter(grid, span, visit).Split(geometry, {met.west, met.east}, {met.south, met.north});
}

TileSpan TilesMeeting(const TileGrid& grid, const Bounds& bounds) {
    const Span columns = Meeting(grid.columns, bounds.xMin, bounds.xMax);
    const Span rows = Meeting(grid.rows, bounds.yMin, bounds.yMax);
    return {columns.begin, columns.end, rows.begin, rows.end};
}

}  // namespace orvo::geos
