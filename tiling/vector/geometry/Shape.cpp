#include "tiling/vector/geometry/Shape.h"

#include <algorithm>

namespace orvo::geos {

Bounds Bounds::Of(const IEnvelope& envelope) {
    if (envelope.IsEmpty()) return {};
    return {envelope.XMin(), envelope.YMin(), envelope.XMax(), envelope.YMax()};
}

void Bounds::Include(const Coordinate& c) {
    xMin = std::min(xMin, c.x);
    yMin = std::min(yMin, c.y);
    xMax = std::max(xMax, c.x);
    yMax = std::max(yMax, c.y);
}

void Bounds::Include(const Bounds& b) {
    xMin = std::min(xMin, b.xMin);
    yMin = std::min(yMin, b.yMin);
    xMax = std::max(xMax, b.xMax);
    yMax = std::max(yMax, b.yMax);
}

Shape Shape::EmptyCopy() const {
    Shape copy;
    copy.type = type;
    copy.isMulti = isMulti;
    copy.hasZ = hasZ;
    copy.meanZ = meanZ;
    return copy;
}

Shape::Path Shape::PathAt(std::size_t n) const {
    const std::size_t begin = n == 0 ? 0 : paths_[n - 1].end;
    return Points().subspan(begin, paths_[n].end - begin);
}

bool Shape::MayMeet(const Bounds& rectangle) const {
    if (paths_.empty())
        return std::ranges::any_of(points_, [&](const auto& c) { return rectangle.Holds(c); });
    return std::ranges::any_of(paths_, [&](const PathEnd& path) { return path.extent.Meets(rectangle); });
}

void Shape::AddPoint(const Coordinate& point) {
    points_.push_back(point);
    extent_.Include(point);
}

void Shape::AddPath(Path path) {
    points_.insert(points_.end(), path.begin(), path.end());
    Bounds extent;
    for (const Coordinate& c : path) extent.Include(c);
    paths_.push_back({points_.size(), extent});
    extent_.Include(extent);
}

void Shape::ReversePath(std::size_t n) {
    const std::size_t begin = n == 0 ? 0 : paths_[n - 1].end;
    std::ranges::reverse(std::span(points_).subspan(begin, paths_[n].end - begin));
}

void Shape::EndArea() {
    if (paths_.size() > (areaEnds_.empty() ? 0 : areaEnds_.back())) areaEnds_.push_back(paths_.size());
}

bool IsInRing(const Coordinate& c, Shape::Path ring) {
    bool inside = false;
    for (std::size_t i = 1; i < ring.size(); ++i) {
        const Coordinate &a = ring[i - 1], &b = ring[i];
        if ((a.y > c.y) != (b.y > c.y) && c.x < a.x + (b.x - a.x) * (c.y - a.y) / (b.y - a.y))
            inside = !inside;
    }
    return inside;
}

bool HoldsEvenOdd(const Shape& shape, const Coordinate& c) {
    bool holds = false;
    for (std::size_t n = 0; n < shape.PathCount(); ++n) holds = holds != IsInRing(c, shape.PathAt(n));
    return holds;
}

}  // namespace orvo::geos
