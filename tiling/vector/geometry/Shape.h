// A geometry as plain coordinates, the form in which it is read, related and cut.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "platform/Geometry.h"

namespace orvo::geos {

/// A vertex in map units; `z` is no number where the shape is flat.
struct Coordinate {
    double x = 0;
    double y = 0;
    double z = std::numeric_limits<double>::quiet_NaN();
};

inline bool SamePlace(const Coordinate& a, const Coordinate& b) {
    return a.x == b.x && a.y == b.y;
}

/// A closed rectangle in map units; new, it holds nothing.
struct Bounds {
    double xMin = std::numeric_limits<double>::infinity();
    double yMin = std::numeric_limits<double>::infinity();
    double xMax = -std::numeric_limits<double>::infinity();
    double yMax = -std::numeric_limits<double>::infinity();

    static Bounds Of(const IEnvelope& envelope);

    bool IsEmpty() const { return !(xMin <= xMax && yMin <= yMax); }
    bool HasArea() const { return xMin < xMax && yMin < yMax; }
    bool Holds(const Bounds& b) const {
        return xMin <= b.xMin && b.xMax <= xMax && yMin <= b.yMin && b.yMax <= yMax;
    }
    /// Inside or on an edge.
    bool Holds(const Coordinate& c) const { return c.x >= xMin && c.x <= xMax && c.y >= yMin && c.y <= yMax; }
    /// Inside, off the edges.
    bool HoldsInside(const Coordinate& c) const {
        return c.x > xMin && c.x < xMax && c.y > yMin && c.y < yMax;
    }
    /// At least one point in common.
    bool Meets(const Bounds& b) const {
        return xMin <= b.xMax && b.xMin <= xMax && yMin <= b.yMax && b.yMin <= yMax;
    }
    Bounds GrownBy(double dx, double dy) const { return {xMin - dx, yMin - dy, xMax + dx, yMax + dy}; }
    void Include(const Coordinate& c);
    void Include(const Bounds& b);
    bool operator==(const Bounds&) const = default;
};

/// Points, lines or areas. Points stand one by one; a line is one path; an area is a closed shell followed by
/// its closed holes.
class Shape {
  public:
    using Path = std::span<const Coordinate>;

    orvo::GeometryType type = GeometryType::Null;
    bool isMulti = false;  ///< stays a collection of its kind, whatever the number of parts
    bool hasZ = false;
    /// The mean height of the whole that this is a part of, for places that no border is near.
    double meanZ = std::numeric_limits<double>::quiet_NaN();

    /// A shape without coordinates, of the same kind.
    Shape EmptyCopy() const;

    bool IsEmpty() const { return points_.empty(); }
    bool IsMadeOfPoints() const {
        return type == orvo::GeometryType::Point || type == orvo::GeometryType::Multipoint;
    }
    /// Of the whole, where this is what is left of one.
    const Bounds& Extent() const { return extent_; }
    void Extend(const Bounds& whole) { extent_.Include(whole); }
    /// Whether the bounds of a point or path have a point in common with the rectangle.
    bool MayMeet(const Bounds& rectangle) const;
    std::span<const Coordinate> Points() const { return points_; }

    /// Lines and rings; none where the shape is made of points.
    std::size_t PathCount() const { return paths_.size(); }
    Path PathAt(std::size_t n) const;
    const Bounds& PathExtent(std::size_t n) const { return paths_[n].extent; }

    /// Areas, and for each the range of its rings: the first is the shell.
    std::size_t AreaCount() const { return areaEnds_.size(); }
    std::size_t AreaBegin(std::size_t n) const { return n == 0 ? 0 : areaEnds_[n - 1]; }
    std::size_t AreaEnd(std::size_t n) const { return areaEnds_[n]; }

    void AddPoint(const Coordinate& point);
    void AddPath(Path path);
    /// Turns a path around.
    void ReversePath(std::size_t n);
    /// The rings added since the last call become one area.
    void EndArea();
    void Reserve(std::size_t points) { points_.reserve(points); }

  private:
    struct PathEnd {
        std::size_t end = 0;
        Bounds extent;
    };
    std::vector<Coordinate> points_;
    std::vector<PathEnd> paths_;
    std::vector<std::size_t> areaEnds_;
    Bounds extent_;
};

/// Whether a place off the ring lies inside it, by the even-odd rule.
bool IsInRing(const Coordinate& c, Shape::Path ring);
/// Whether a place off the borders lies in the areas, by the even-odd rule.
bool HoldsEvenOdd(const Shape& shape, const Coordinate& c);

/// The same areas with each vertex changed.
template <class Change>
Shape WithVertices(const Shape& shape, Change&& change) {
    Shape result = shape.EmptyCopy();
    std::vector<Coordinate> ring;
    for (std::size_t area = 0; area < shape.AreaCount(); ++area) {
        for (std::size_t n = shape.AreaBegin(area); n < shape.AreaEnd(area); ++n) {
            ring.assign(shape.PathAt(n).begin(), shape.PathAt(n).end());
            std::ranges::for_each(ring, change);
            result.AddPath(ring);
        }
        result.EndArea();
    }
    return result;
}

}  // namespace orvo::geos
