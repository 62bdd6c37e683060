#include "tiling/vector/geometry/Reduce.h"

#include "tiling/vector/geometry/Segment.h"

namespace orvo::geos {
namespace {

/// Leaves out each vertex whose way can be cut short on the outer side of one edge. The ends stay.
void Thin(Shape::Path path, const Bounds& range, std::vector<Coordinate>& into) {
    into.clear();
    into.push_back(path.front());
    unsigned kept = Outcode(path.front(), range);
    unsigned current = Outcode(path[1], range);
    for (std::size_t n = 1; n + 1 < path.size(); ++n) {
        const unsigned next = Outcode(path[n + 1], range);
        if ((kept & current & next) == 0) {
            into.push_back(path[n]);
            kept = current;
        }
        current = next;
    }
    into.push_back(path.back());
}

/// Once around the range or through it; not so where all of it stays beyond one edge.
bool MayMatter(Shape::Path path, const Bounds& range) {
    unsigned common = ~0U;
    for (const Coordinate& c : path) common &= Outcode(c, range);
    return common == 0;
}

}  // namespace

Shape Reduced(const Shape& shape, const Bounds& range) {
    Shape reduced = shape.EmptyCopy();
    std::vector<Coordinate> thinned;
    const auto add = [&](std::size_t n) {
        if (!shape.PathExtent(n).Meets(range)) return false;
        Thin(shape.PathAt(n), range, thinned);
        if (!MayMatter(thinned, range)) return false;
        // A ring keeps the four vertices that it needs.
        while (shape.type == GeometryType::Polygon && thinned.size() < 4) thinned.push_back(thinned.back());
        reduced.AddPath(thinned);
        return true;
    };
    for (std::size_t area = 0; area < shape.AreaCount(); ++area) {
        const std::size_t shell = shape.AreaBegin(area);
        if (!add(shell)) continue;
        for (std::size_t n = shell + 1; n < shape.AreaEnd(area); ++n) add(n);
        reduced.EndArea();
    }
    if (shape.type == GeometryType::Polyline)
        for (std::size_t n = 0; n < shape.PathCount(); ++n) add(n);
    for (const Coordinate& c : shape.PathCount() == 0 ? shape.Points() : std::span<const Coordinate>{})
        if (range.Holds(c)) reduced.AddPoint(c);
    if (!reduced.IsEmpty()) reduced.Extend(shape.Extent());
    return reduced;
}

}  // namespace orvo::geos
