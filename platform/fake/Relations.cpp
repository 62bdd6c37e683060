#include "platform/fake/Relations.h"

#include <algorithm>
#include <set>

namespace orvo::fake {
namespace {

enum Place { kInterior, kBoundary, kExterior };

bool IsOnSegment(const Point& p, const Point& a, const Point& b) {
    return std::min(a.X, b.X) <= p.X && p.X <= std::max(a.X, b.X) && std::min(a.Y, b.Y) <= p.Y &&
           p.Y <= std::max(a.Y, b.Y);
}

bool IsOnPath(const Point& p, const std::vector<Point>& path) {
    for (std::size_t i = 1; i < path.size(); ++i) {
        if (IsOnSegment(p, path[i - 1], path[i])) return true;
    }
    return false;
}

bool IsSame(const Point& a, const Point& b) {
    return a.X == b.X && a.Y == b.Y;
}

/// The ends of paths are the boundary of a line, except where an even number of them meet.
Place PlaceOnLine(const Point& p, const Shape& shape) {
    int ends = 0;
    bool meets = false;
    for (const auto& path : shape.parts) {
        meets = meets || IsOnPath(p, path);
        ends += (IsSame(path.front(), p) ? 1 : 0) + (IsSame(path.back(), p) ? 1 : 0);
    }
    if (!meets) return kExterior;
    return ends % 2 == 1 ? kBoundary : kInterior;
}

/// Counts the upright edges to the right of the point.
Place PlaceInArea(const Point& p, const Shape& shape) {
    bool inside = false;
    for (const auto& ring : shape.parts) {
        if (IsOnPath(p, ring)) return kBoundary;
        for (std::size_t i = 1; i < ring.size(); ++i) {
            const auto [low, high] = std::minmax(ring[i - 1].Y, ring[i].Y);
            if (ring[i].X > p.X && low <= p.Y && p.Y < high) inside = !inside;
        }
    }
    return inside ? kInterior : kExterior;
}

Place PlaceOf(const Point& p, const Shape& shape) {
    if (shape.type == GeometryType::Polyline) return PlaceOnLine(p, shape);
    if (shape.type == GeometryType::Polygon) return PlaceInArea(p, shape);
    for (const auto& part : shape.parts) {
        if (IsSame(part.front(), p)) return kInterior;
    }
    return kExterior;
}

int DimensionOf(const Shape& shape) {
    if (shape.parts.empty()) return -1;
    if (shape.type == GeometryType::Polygon) return 2;
    return shape.type == GeometryType::Polyline ? 1 : 0;
}

/// One stretch of an axis that no shape divides: a coordinate, or the open gap between two.
struct Stretch {
    double at;
    int dimension;
};

std::vector<Stretch> Stretches(const std::set<double>& coordinates) {
    std::vector<Stretch> stretches;
    for (const double at : coordinates) {
        if (!stretches.empty()) stretches.push_back({(stretches.back().at + at) / 2, 1});
        stretches.push_back({at, 0});
    }
    return stretches;
}

/// The part of the segment within the box, in the segment's direction; false where it is no more than a
/// point.
bool CutSegment(Point& a, Point& b, const Box& box) {
    const auto clamp = [&](const Point& p) {
        return Point{std::clamp(p.X, box.xMin, box.xMax), std::clamp(p.Y, box.yMin, box.yMax)};
    };
    const Point from = clamp(a);
    const Point to = clamp(b);
    if (IsSame(from, to) || !IsOnSegment(from, a, b)) return false;
    a = from;
    b = to;
    return true;
}

void CutPath(const std::vector<Point>& path, const Box& box, std::vector<std::vector<Point>>& pieces) {
    bool joins = false;
    for (std::size_t i = 1; i < path.size(); ++i) {
        Point a = path[i - 1];
        Point b = path[i];
        if (!CutSegment(a, b, box)) {
            joins = false;
            continue;
        }
        if (joins && IsSame(pieces.back().back(), a)) {
            pieces.back().push_back(b);
        } else {
            pieces.push_back({a, b});
        }
        joins = true;
    }
}

}  // namespace

Matrix Relate(const Shape& a, const Shape& b) {
    Matrix matrix{{{{-1, -1, -1}, {-1, -1, -1}, {-1, -1, -1}}}, DimensionOf(a), DimensionOf(b)};
    std::set<double> xs;
    std::set<double> ys;
    for (const Shape* shape : {&a, &b}) {
        for (const auto& part : shape->parts) {
            for (const Point& p : part) {
                xs.insert(p.X);
                ys.insert(p.Y);
            }
        }
    }
    for (const Stretch& x : Stretches(xs)) {
        for (const Stretch& y : Stretches(ys)) {
            const Point sample{x.at, y.at};
            int& common = matrix.common[PlaceOf(sample, a)][PlaceOf(sample, b)];
            common = std::max(common, x.dimension + y.dimension);
        }
    }
    return matrix;
}

bool Matrix::Within() const {
    return common[kInterior][kInterior] >= 0 && common[kInterior][kExterior] < 0 &&
           common[kBoundary][kExterior] < 0;
}

bool Matrix::Crosses() const {
    const int inside = common[kInterior][kInterior];
    if (dimensionA == 1 && dimensionB == 1) return inside == 0;
    if (dimensionA == dimensionB || inside < 0) return false;
    return (dimensionA < dimensionB ? common[kInterior][kExterior] : common[kExterior][kInterior]) >= 0;
}

bool Matrix::Overlaps() const {
    const int inside = common[kInterior][kInterior];
    if (dimensionA != dimensionB || inside < 0 || (dimensionA == 1 && inside != 1)) return false;
    return common[kInterior][kExterior] >= 0 && common[kExterior][kInterior] >= 0;
}

Shape ShapeOfBox(const Box& box) {
    const bool wide = box.xMin < box.xMax;
    const bool high = box.yMin < box.yMax;
    const Point low{box.xMin, box.yMin};
    const Point top{box.xMax, box.yMax};
    if (wide && high) {
        return {GeometryType::Polygon, {{low, {box.xMax, box.yMin}, top, {box.xMin, box.yMax}, low}}};
    }
    if (wide || high) return {GeometryType::Polyline, {{low, top}}};
    return {GeometryType::Point, {{low}}};
}

Shape Cut(const Shape& shape, const Box& box) {
    Shape cut{shape.type, {}};
    for (const auto& part : shape.parts) {
        if (shape.type == GeometryType::Polyline) {
            CutPath(part, box, cut.parts);
        } else if (shape.type == GeometryType::Polygon) {
            const Box ring{std::max(part[0].X, box.xMin), std::max(part[0].Y, box.yMin),
                           std::min(part[2].X, box.xMax), std::min(part[2].Y, box.yMax)};
            if (ring.xMin < ring.xMax && ring.yMin < ring.yMax)
                cut.parts.push_back(ShapeOfBox(ring).parts[0]);
        } else if (PlaceOf(part[0], ShapeOfBox(box)) != kExterior) {
            cut.parts.push_back(part);
        }
    }
    return cut;
}

}  // namespace orvo::fake
