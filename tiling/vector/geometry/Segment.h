// A segment against a rectangle.
#pragma once

#include <cmath>
#include <optional>

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// Beyond which edges a vertex lies, as bits; 0 for a vertex inside or on an edge.
inline unsigned Outcode(const Coordinate& c, const Bounds& r) {
    return (c.x < r.xMin ? 1U : 0U) | (c.x > r.xMax ? 2U : 0U) | (c.y < r.yMin ? 4U : 0U) |
           (c.y > r.yMax ? 8U : 0U);
}

/// On which side of the line from `a` to `b` a place lies: positive, negative, or 0 where rounding decides.
inline int Side(const Coordinate& a, const Coordinate& b, const Coordinate& c) {
    constexpr double kRounding = 1e-14;
    const double left = (b.x - a.x) * (c.y - a.y);
    const double right = (b.y - a.y) * (c.x - a.x);
    const double margin = kRounding * (std::abs(left) + std::abs(right));
    return left - right > margin ? 1 : right - left > margin ? -1 : 0;
}

/// The part of a segment that the closed rectangle holds: where it crosses an edge on its way in, and out.
struct ClippedSegment {
    std::optional<Coordinate> entry;
    std::optional<Coordinate> exit;
};

/// Nothing where the segment misses the rectangle. The same segment gives the same crossings in both
/// directions, so that neighbours that share a border are cut alike; a crossing lies exactly on its edge.
std::optional<ClippedSegment> ClipSegment(const Coordinate& a, const Coordinate& b, const Bounds& r);

}  // namespace orvo::geos
