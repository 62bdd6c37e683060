#include "tiling/vector/geometry/Segment.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvo::geos {
namespace {

enum class Edge { Bottom, Right, Top, Left };

/// Where a segment crosses an edge.
struct Crossing {
    Coordinate at;
    Edge edge = Edge::Bottom;
};

bool IsUpright(Edge edge) {
    return edge == Edge::Left || edge == Edge::Right;
}

double Position(Edge edge, const Bounds& r) {
    switch (edge) {
        case Edge::Bottom:
            return r.yMin;
        case Edge::Right:
            return r.xMax;
        case Edge::Top:
            return r.yMax;
        case Edge::Left:
            break;
    }
    return r.xMin;
}

/// How far along from `a` to `b` the edge's line is met; the two lie on different sides of it.
double Share(const Coordinate& a, const Coordinate& b, Edge edge, const Bounds& r) {
    const double at = Position(edge, r);
    return IsUpright(edge) ? (at - a.x) / (b.x - a.x) : (at - a.y) / (b.y - a.y);
}

Coordinate Clamped(const Coordinate& c, const Bounds& r) {
    return {std::clamp(c.x, r.xMin, r.xMax), std::clamp(c.y, r.yMin, r.yMax), c.z};
}

Coordinate PointOn(Coordinate a, Coordinate b, Edge edge, const Bounds& r) {
    for (const Coordinate& end : {a, b})
        if ((IsUpright(edge) ? end.x : end.y) == Position(edge, r)) return Clamped(end, r);
    if (b.x < a.x || (b.x == a.x && b.y < a.y)) std::swap(a, b);
    const double share = Share(a, b, edge, r);
    const double z = a.z + (b.z - a.z) * share;
    if (IsUpright(edge)) return Clamped({Position(edge, r), a.y + (b.y - a.y) * share, z}, r);
    return Clamped({a.x + (b.x - a.x) * share, Position(edge, r), z}, r);
}

/// The edges that a vertex with these bits lies beyond: at most one of each direction.
struct Beyond {
    std::optional<Edge> upright, level;
    explicit Beyond(unsigned bits) {
        if ((bits & 3U) != 0) upright = (bits & 1U) != 0 ? Edge::Left : Edge::Right;
        if ((bits & 12U) != 0) level = (bits & 4U) != 0 ? Edge::Bottom : Edge::Top;
    }
};

/// Of the edges that the segment passes on its way from an outer vertex, the one nearer to the inside.
Crossing Innermost(const Beyond& beyond, const Coordinate& outer, const Coordinate& other, const Bounds& r) {
    Edge edge = beyond.upright ? *beyond.upright : *beyond.level;
    if (beyond.upright && beyond.level &&
        Share(outer, other, *beyond.level, r) > Share(outer, other, *beyond.upright, r))
        edge = *beyond.level;
    return {PointOn(outer, other, edge, r), edge};
}

/// Whether the segment's two crossings come in order, enough apart to be more than a contact with a corner.
bool Passes(const Coordinate& a, const Coordinate& b, const Crossing& entry, const Crossing& exit,
            const Bounds& r) {
    if (Share(a, b, entry.edge, r) > Share(a, b, exit.edge, r)) return false;
    constexpr double kRounding = 1e-15;
    return std::abs(entry.at.x - exit.at.x) > kRounding * (std::abs(a.x) + std::abs(b.x)) ||
           std::abs(entry.at.y - exit.at.y) > kRounding * (std::abs(a.y) + std::abs(b.y));
}

}  // namespace

std::optional<ClippedSegment> ClipSegment(const Coordinate& a, const Coordinate& b, const Bounds& r) {
    const unsigned outcodeA = Outcode(a, r), outcodeB = Outcode(b, r);
    if ((outcodeA & outcodeB) != 0) return std::nullopt;
    if ((outcodeA | outcodeB) == 0) return ClippedSegment{};
    if (outcodeB == 0) return ClippedSegment{Innermost(Beyond(outcodeA), a, b, r).at, std::nullopt};
    if (outcodeA == 0) return ClippedSegment{std::nullopt, Innermost(Beyond(outcodeB), b, a, r).at};
    const Crossing entry = Innermost(Beyond(outcodeA), a, b, r), exit = Innermost(Beyond(outcodeB), b, a, r);
    if (!Passes(a, b, entry, exit, r)) return std::nullopt;
    return ClippedSegment{entry.at, exit.at};
}

}  // namespace orvo::geos
