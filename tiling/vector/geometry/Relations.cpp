#include "tiling/vector/geometry/Relations.h"

#include <algorithm>

#include "tiling/vector/geometry/Convert.h"
#include "tiling/vector/geometry/Segment.h"

namespace orvo::geos {
namespace {

/// For a slanted segment whose own bounds reach into the rectangle while neither end does.
Finding SlantEnters(const Coordinate& a, const Coordinate& b, const Bounds& r) {
    int left = 0, right = 0;
    for (const double x : {r.xMin, r.xMax}) {
        for (const double y : {r.yMin, r.yMax}) {
            const int side = Side(a, b, {x, y});
            left += side > 0 ? 1 : 0;
            right += side < 0 ? 1 : 0;
        }
    }
    if (left > 0 && right > 0) return Finding::Yes;
    return left == 4 || right == 4 ? Finding::No : Finding::Doubt;
}

Finding SegmentEnters(const Coordinate& a, const Coordinate& b, const Bounds& r) {
    if (std::max(a.x, b.x) <= r.xMin || std::min(a.x, b.x) >= r.xMax) return Finding::No;
    if (std::max(a.y, b.y) <= r.yMin || std::min(a.y, b.y) >= r.yMax) return Finding::No;
    if (a.x == b.x || a.y == b.y || r.HoldsInside(a) || r.HoldsInside(b)) return Finding::Yes;
    return SlantEnters(a, b, r);
}

/// Whether the segment runs along one edge of the rectangle that holds it.
bool LiesOnEdge(const Coordinate& a, const Coordinate& b, const Bounds& r) {
    if (a.x == b.x && (a.x == r.xMin || a.x == r.xMax)) return true;
    return a.y == b.y && (a.y == r.yMin || a.y == r.yMax);
}

/// For lines and points whose bounds the rectangle holds: all of it on the edges is not within.
bool LeavesEdges(const Shape& shape, const Bounds& r) {
    const Bounds& extent = shape.Extent();
    if (extent.xMin > r.xMin && extent.xMax < r.xMax && extent.yMin > r.yMin && extent.yMax < r.yMax)
        return true;
    if (shape.IsMadeOfPoints())
        return std::ranges::any_of(shape.Points(), [&](const Coordinate& c) { return r.HoldsInside(c); });
    for (std::size_t n = 0; n < shape.PathCount(); ++n) {
        const Shape::Path path = shape.PathAt(n);
        for (std::size_t i = 1; i < path.size(); ++i)
            if (!LiesOnEdge(path[i - 1], path[i], r)) return true;
    }
    return false;
}

bool HasPathWithoutLength(const Shape& shape) {
    for (std::size_t n = 0; n < shape.PathCount(); ++n) {
        const Bounds& extent = shape.PathExtent(n);
        if (extent.xMin == extent.xMax && extent.yMin == extent.yMax) return true;
    }
    return false;
}

/// Some of it inside the rectangle and some outside. Only where its bounds reach out.
Finding LiesOnBothSides(const Shape& shape, const Bounds& r) {
    if (!shape.IsMadeOfPoints()) return HasPathWithoutLength(shape) ? Finding::Doubt : EntersInside(shape, r);
    const auto isInside = [&](const Coordinate& c) { return r.HoldsInside(c); };
    return std::ranges::any_of(shape.Points(), isInside) ? Finding::Yes : Finding::No;
}

/// No point in common, or nothing there at all.
bool IsApart(const Shape& shape, const Bounds& rectangle) {
    return shape.IsEmpty() || rectangle.IsEmpty() || !shape.Extent().Meets(rectangle);
}

using Predicate = decltype(GEOSWithin_r);

bool Ask(Predicate predicate, const Shape& shape, const Bounds& rectangle) {
    return Answer(predicate(GeosContext(), ToGeos(shape).get(), ToGeos(rectangle).get()));
}

}  // namespace

Finding EntersInside(const Shape& shape, const Bounds& rectangle) {
    Finding finding = Finding::No;
    for (std::size_t n = 0; n < shape.PathCount(); ++n) {
        if (!shape.PathExtent(n).Meets(rectangle)) continue;
        const Shape::Path path = shape.PathAt(n);
        for (std::size_t i = 1; i < path.size(); ++i) {
            const Finding segment = SegmentEnters(path[i - 1], path[i], rectangle);
            if (segment == Finding::Yes) return segment;
            if (segment == Finding::Doubt) finding = segment;
        }
    }
    return finding;
}

bool Within(const Shape& shape, const Bounds& rectangle, const Shape& whole) {
    if (IsApart(shape, rectangle) || !rectangle.Holds(shape.Extent())) return false;
    if (!rectangle.HasArea()) return Ask(GEOSWithin_r, whole, rectangle);
    return shape.type == GeometryType::Polygon || LeavesEdges(shape, rectangle);
}

bool Crosses(const Shape& shape, const Bounds& rectangle, const Shape& whole) {
    if (IsApart(shape, rectangle)) return false;
    if (!rectangle.HasArea()) return Ask(GEOSCrosses_r, whole, rectangle);
    if (shape.type == GeometryType::Polygon || rectangle.Holds(shape.Extent())) return false;
    const Finding finding = LiesOnBothSides(shape, rectangle);
    return finding == Finding::Doubt ? Ask(GEOSCrosses_r, whole, rectangle) : finding == Finding::Yes;
}

bool Overlaps(const Shape& shape, const Bounds& rectangle, const Shape& whole) {
    if (IsApart(shape, rectangle)) return false;
    if (!rectangle.HasArea()) return Ask(GEOSOverlaps_r, whole, rectangle);
    // An area that reaches out of the rectangle overlaps it where its boundary runs inside: it then has
    // points of the rectangle on either side. Where none does, it covers the rectangle or leaves it alone.
    if (shape.type != GeometryType::Polygon || rectangle.Holds(shape.Extent())) return false;
    const Finding finding = EntersInside(shape, rectangle);
    return finding == Finding::Doubt ? Ask(GEOSOverlaps_r, whole, rectangle) : finding == Finding::Yes;
}

bool Covers(const Shape& shape, const Bounds& rectangle) {
    if (shape.type != GeometryType::Polygon || IsApart(shape, rectangle) || !rectangle.HasArea())
        return false;
    // A border in doubt runs through a corner but for rounding, and takes nothing away.
    if (EntersInside(shape, rectangle) == Finding::Yes) return false;
    return HoldsEvenOdd(shape,
                        {(rectangle.xMin + rectangle.xMax) / 2, (rectangle.yMin + rectangle.yMax) / 2});
}

}  // namespace orvo::geos
