#include "tiling/vector/Foretelling.h"

#include <algorithm>
#include <set>
#include <utility>

#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::tiling {
namespace {

using GeometryPtr = std::shared_ptr<geos::Geometry>;

constexpr std::size_t kMostTiles = 1U << 16U;  ///< about 0.5 kB each, where it covers them

/// Left as it is where that fails: the component's own question fails then, and is answered for.
GeometryPtr Known(const GeometryPtr& around, const geos::Bounds& tile) {
    try {
        return around->Foretold(tile);
    } catch (const std::exception&) {
        return around;
    }
}

bool IsValid(const geos::Geometry& geometry) {
    try {
        return !geometry.IsInvalid();
    } catch (const RuntimeError&) {
        return false;
    }
}

}  // namespace

geos::TileSpan SpanToVisit(const geos::Geometry& geometry, const geos::TileGrid& edges,
                           const geos::TileSpan& own) {
    const bool isLine = geometry.GeometryType() == GeometryType::Polyline;
    const geos::TileSpan met = geos::TilesMeeting(edges, geometry.Extent());
    const bool isOwn =
        met.west >= own.west && met.east <= own.east && met.south >= own.south && met.north <= own.north;
    if (isOwn) return own;
    if (isLine)
        return {own.west - std::min<std::size_t>(own.west, 1), own.east,
                own.south - std::min<std::size_t>(own.south, 1), own.north};
    const bool isBeyond =
        met.east <= own.west || met.west >= own.east || met.north <= own.south || met.south >= own.north;
    return isBeyond || IsValid(geometry) ? own : geos::TileSpan{};
}

Foretold Foretell(const GeometryPtr& geometry, const geos::TileGrid& edges, const geos::TileSpan& own) {
    const orvo::GeometryType type = geometry->GeometryType();
    if (type == GeometryType::Point || type == GeometryType::Other || geometry->IsEmpty()) return {};
    const geos::TileSpan met = geos::TilesMeeting(edges, geometry->Extent());
    if ((met.east - met.west) * (met.north - met.south) > kMostTiles) return {};
    Foretold foretold{geos::WholeOf(edges), {}, {}};
    const geos::TileSpan span = SpanToVisit(*geometry, edges, own);
    const auto boundsOf = [&](std::size_t column, std::size_t row) {
        const auto &x = edges.columns[column], &y = edges.rows[row];
        return geos::Bounds{x.low, y.low, x.high, y.high};
    };
    geos::ForEachTile(geometry, edges, span, [&](std::size_t column, std::size_t row, const auto& around) {
        geos::WorkLimit::Require();
        if (geometry->Mended() || !geometry->Refusal().empty()) return;
        foretold.visits.push_back({column, row, Known(around, boundsOf(column, row))});
    });
    const GeometryPtr mended = geometry->Mended();
    if (!mended) return foretold;
    std::set<std::pair<std::size_t, std::size_t>> known;
    for (const auto& visit : foretold.visits) known.emplace(visit.column, visit.row);
    const geos::TileSpan rest = SpanToVisit(*mended, edges, own);
    geos::ForEachTile(mended, edges, rest, [&](std::size_t column, std::size_t row, const auto& around) {
        geos::WorkLimit::Require();
        if (!mended->Refusal().empty()) return;
        const bool isDone = known.contains({column, row});
        foretold.mended.push_back({column, row, isDone ? around : Known(around, boundsOf(column, row))});
    });
    return foretold;
}

}  // namespace orvo::tiling
