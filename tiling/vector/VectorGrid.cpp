#include "tiling/vector/VectorGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "support/Arithmetic.h"
#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

/// About 1.3 kB each by the end of a run: 13 GB, of which 1.4 GB are the grid's own records and envelopes.
constexpr std::int64_t kMostVectorTiles = 10'000'000;

/// The length of an axis in whole map units, at least one. What rounding may have added makes no further
/// unit: the last tiles reach the layer's own edges anyway.
Long WholeUnits(double low, double high) {
    const double rounding = 1e-12 * std::max(std::abs(low), std::abs(high));
    const double whole = std::max(std::ceil(high - low - rounding), 1.0);
    if (whole > std::numeric_limits<Long>::max()) {
        throw UsageError(
            "the layer's extent has more map units than 32 bits count; bring it to a coordinate "
            "system with larger units");
    }
    return static_cast<Long>(whole);
}

struct Axis {
    Long size = 0;
    std::int64_t count = 0;
    std::int64_t empty = 0;
};

Axis PlanAxis(Long whole, Long size, Long count) {
    const auto toCover = [&](Long tile) { return (std::int64_t{whole} + tile - 1) / tile; };
    if (count > 0) {
        const Long tile = RoundUp(Divide(whole, count));
        if (std::int64_t{tile} * count > std::numeric_limits<Long>::max()) {
            throw UsageError("with " + std::to_string(count) + " tiles of " + std::to_string(tile) +
                             " map units side by side the grid has more map units than 32 bits count; "
                             "choose fewer tiles");
        }
        return {tile, count, count - toCover(tile)};
    }
    const Long tile = size == -1 ? whole : size;
    return {tile, toCover(tile), 0};
}

/// Fails where whole map units cannot be told apart at these coordinates.
void RequireSteps(const IEnvelope& extent) {
    const double far = std::max(
        {std::abs(extent.XMin()), std::abs(extent.XMax()), std::abs(extent.YMin()), std::abs(extent.YMax())});
    if (far > 1e15) {
        throw UsageError(
            "the layer lies so far from the origin that whole map units cannot be told apart; "
            "check its coordinates");
    }
}

/// Brings the extent to whole map units.
GridPlan PlanGrid(IEnvelope& extent, const TileSizes& sizes) {
    RequireSteps(extent);
    const double east = extent.XMax();
    const double north = extent.YMax();
    extent.Width(WholeUnits(extent.XMin(), east));
    extent.Height(WholeUnits(extent.YMin(), north));
    const Axis x = PlanAxis(ToLong(extent.Width()), sizes.width, sizes.columns);
    const Axis y = PlanAxis(ToLong(extent.Height()), sizes.height, sizes.rows);
    if (x.count > kMostVectorTiles || y.count > kMostVectorTiles || x.count * y.count > kMostVectorTiles) {
        throw UsageError("this grid has " + std::to_string(x.count) + " x " + std::to_string(y.count) +
                         " tiles, and at most " + std::to_string(kMostVectorTiles) +
                         " are cut in one run; choose larger tiles");
    }
    return {x.size, y.size, x.count, y.count, x.empty, y.empty, east, north};
}

}  // namespace

VectorGrid::VectorGrid(const std::shared_ptr<ILayer>& layer, const TileSizes& sizes,
                       const std::string& prefix)
    : plan_(PlanGrid(*layer->AreaOfInterest(), sizes)), byCounts_(sizes.columns > 0) {
    tiles_.Id(prefix);
    Configure(layer);
    CollectEdges();
    SetHeights();
}

/// The rows' count setter writes into the tile width, so the columns come after it, and the sizes last: they
/// keep counts of 2 and more, and derive those of 1 anew.
void VectorGrid::Configure(const std::shared_ptr<ILayer>& layer) {
    tiles_.VectorLayer(layer);
    if (byCounts_) {
        tiles_.TileCountY(static_cast<Long>(plan_.rows));
        tiles_.TileCountX(static_cast<Long>(plan_.columns));
    }
    tiles_.TileWidth(plan_.width);
    tiles_.TileHeight(plan_.height);
    if (tiles_.TileCountX() != plan_.columns || tiles_.TileCountY() != plan_.rows)
        throw RunError("the grid could not be laid out");
    tiles_.InitializeTiles();
}

/// Each tile ends where its neighbour begins, so that rounding leaves neither gap nor overlap; the last ones
/// reach the layer's own edges.
void VectorGrid::CollectEdges() {
    for (Long x = 1; x <= plan_.columns; ++x) {
        const auto tile = TileAt(x, 1);
        edges_.columns.push_back({tile->XMin(), tile->XMin() + tile->Width()});
    }
    for (Long y = 1; y <= plan_.rows; ++y) {
        const auto tile = TileAt(1, y);
        edges_.rows.push_back({tile->YMin(), tile->YMin() + tile->Depth()});
    }
    const auto close = [](std::vector<geos::Interval>& intervals, double end) {
        for (std::size_t i = 1; i < intervals.size(); ++i) intervals[i - 1].high = intervals[i].low;
        intervals.back().high = std::max(intervals.back().high, end);
    };
    close(edges_.columns, plan_.east);
    close(edges_.rows, plan_.north);
}

/// The grid leaves the height to its owner.
void VectorGrid::SetHeights() {
    for (Long y = 1; y <= plan_.rows; ++y) {
        for (Long x = 1; x <= plan_.columns; ++x) {
            const auto tile = TileAt(x, y);
            tile->Height(tile->Depth());
            SetEdges(*tile, x, y);
        }
    }
}

void VectorGrid::SetEdges(IEnvelope& tile, Long column, Long row) const {
    const geos::Bounds bounds = BoundsOf(column, row);
    tile.XMin(bounds.xMin);
    tile.YMin(bounds.yMin);
    tile.XMax(bounds.xMax);
    tile.YMax(bounds.yMax);
}

std::shared_ptr<IEnvelope> VectorGrid::TileAt(Long column, Long row) {
    auto tile = tiles_.GetTileExtent(column, row);
    if (!tile) throw RunError("the grid could not be laid out");
    return tile;
}

geos::Bounds VectorGrid::BoundsOf(Long column, Long row) const {
    const auto& x = edges_.columns[static_cast<std::size_t>(column) - 1];
    const auto& y = edges_.rows[static_cast<std::size_t>(row) - 1];
    return {x.low, y.low, x.high, y.high};
}

geos::Bounds VectorGrid::Whole() const {
    return geos::WholeOf(edges_);
}

void VectorGrid::ReachOut(const geos::Bounds& bounds) {
    edges_ = geos::ReachingOut(std::move(edges_), bounds);
    const auto lastColumn = static_cast<Long>(plan_.columns);
    const auto lastRow = static_cast<Long>(plan_.rows);
    for (Long x = 1; x <= lastColumn; ++x) {
        for (const Long y : {1, lastRow}) SetEdges(*TileAt(x, y), x, y);
    }
    for (Long y = 1; y <= lastRow; ++y) {
        for (const Long x : {1, lastColumn}) SetEdges(*TileAt(x, y), x, y);
    }
}

std::size_t IntervalOf(const std::vector<geos::Interval>& intervals, double place) {
    const auto above = std::ranges::upper_bound(intervals, place, {}, &geos::Interval::high);
    return static_cast<std::size_t>(std::min(above, intervals.end() - 1) - intervals.begin());
}

void VectorGrid::TakePart(const PartNumber& part) {
    const CellRange own = PartOfRange({0, 0, plan_.columns, plan_.rows}, part);
    const auto number = [](std::int64_t n) { return static_cast<std::size_t>(n); };
    own_ = {number(own.column), number(own.column + own.columns), number(own.row),
            number(own.row + own.rows)};
}

TileNumbers VectorGrid::Locate(const std::shared_ptr<geos::Geometry>& point) {
    const geos::Coordinate place = point->Coordinates().Points().front();
    if (!Whole().Holds(place)) return {};
    // Asked for this tile alone: for a point on an edge, a search would walk the whole grid in vain.
    TileNumbers found{static_cast<Long>(IntervalOf(edges_.columns, place.x)) + 1,
                      static_cast<Long>(IntervalOf(edges_.rows, place.y)) + 1, false};
    found.onEdge = !tiles_.IsInside(found.column, found.row, point);
    return found;
}

}  // namespace orvo::tiling
