#include "tiling/vector/geometry/ClipAreas.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "platform/RuntimeError.h"
#include "tiling/vector/geometry/Convert.h"
#include "tiling/vector/geometry/Heights.h"
#include "tiling/vector/geometry/Relations.h"
#include "tiling/vector/geometry/Segment.h"

namespace orvo::geos {
namespace {

bool IsValid(const GEOSGeometry& geometry) {
    return Answer(GEOSisValid_r(GeosContext(), &geometry));
}

Shape RectangleLike(const Shape& shape, const Bounds& r) {
    const Coordinate corners[] = {
        {r.xMin, r.yMin}, {r.xMax, r.yMin}, {r.xMax, r.yMax}, {r.xMin, r.yMax}, {r.xMin, r.yMin}};
    Shape rectangle = shape.EmptyCopy();
    rectangle.AddPath(corners);
    rectangle.EndArea();
    return rectangle;
}

/// The ring with a vertex wherever it crosses an edge: GEOS need not compute one, whose rounding would hang
/// on the direction and on the side of the edge.
void AppendNoded(Shape::Path path, const Bounds& r, std::vector<Coordinate>& ring) {
    const auto add = [&](const Coordinate& c) {
        if (ring.empty() || !SamePlace(ring.back(), c)) ring.push_back(c);
    };
    add(path.front());
    for (std::size_t n = 1; n < path.size(); ++n) {
        const auto held = ClipSegment(path[n - 1], path[n], r);
        if (held && held->entry) add(*held->entry);
        if (held && held->exit) add(*held->exit);
        add(path[n]);
    }
}

/// The areas whose bounds meet the rectangle, without the holes elsewhere.
Shape Noded(const Shape& shape, const Bounds& r) {
    constexpr std::size_t kLeastVertices = 4;
    Shape noded = shape.EmptyCopy();
    noded.Reserve(shape.Points().size() + shape.Points().size() / 4);
    std::vector<Coordinate> ring;
    for (std::size_t area = 0; area < shape.AreaCount(); ++area) {
        const std::size_t shell = shape.AreaBegin(area);
        for (std::size_t n = shell; n < shape.AreaEnd(area); ++n) {
            ring.clear();
            if (shape.PathExtent(n).Meets(r)) AppendNoded(shape.PathAt(n), r, ring);
            if (ring.size() >= kLeastVertices) noded.AddPath(ring);
            if (ring.size() < kLeastVertices && n == shell) break;
        }
        noded.EndArea();
    }
    return noded;
}

/// The antiderivative, towards the east, of a weight that no turn or reflection of a tile leaves as it is.
double WeightWestOf(double u, double v) {
    constexpr double kTwist = std::numbers::sqrt3, kTilt = std::numbers::sqrt2;
    return u * (1 + u * u / 3 + kTwist * u * v / 2 + kTilt * v * v);
}

/// The weighted area that a ring winds around in the rectangle, for a rectangle of size 1; more than 0 where
/// the ring turns left. No segment of it crosses an edge.
double AreaWithin(Shape::Path ring, const Bounds& r) {
    const double width = r.xMax - r.xMin, height = r.yMax - r.yMin;
    double area = 0;
    for (std::size_t n = 1; n < ring.size(); ++n) {
        const Coordinate &a = ring[n - 1], &b = ring[n];
        const double from = std::clamp(a.y, r.yMin, r.yMax), to = std::clamp(b.y, r.yMin, r.yMax);
        if (from == to) continue;
        const auto east = [&](double y) {
            const double x = y == a.y ? a.x : y == b.y ? b.x : a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y));
            return (std::clamp(x, r.xMin, r.xMax) - r.xMin) / width;
        };
        const double u0 = east(from), u1 = east(to);
        const double v0 = (from - r.yMin) / height, v1 = (to - r.yMin) / height;
        // Simpson's rule is exact here.
        area +=
            (v1 - v0) *
            (WeightWestOf(u0, v0) + 4 * WeightWestOf((u0 + u1) / 2, (v0 + v1) / 2) + WeightWestOf(u1, v1)) /
            6;
    }
    return area;
}

double AreaWithin(const Shape& shape, const Bounds& r) {
    double sum = 0;
    for (std::size_t area = 0; area < shape.AreaCount(); ++area) {
        const std::size_t shell = shape.AreaBegin(area);
        for (std::size_t n = shell; n < shape.AreaEnd(area); ++n)
            sum += (n == shell ? 1 : -1) * std::abs(AreaWithin(shape.PathAt(n), r));
    }
    return sum;
}

/// Whether the clip takes as much of the rectangle as the areas do. A wrong clip may have the right area by
/// symmetry, and so the area is weighted.
bool HoldsAsMuch(const Shape& clip, const Shape& noded, const Bounds& r) {
    constexpr double kRounding = 1e-12;
    const double far = std::max({std::abs(r.xMin), std::abs(r.xMax), std::abs(r.yMin), std::abs(r.yMax)});
    const double tolerance = kRounding * far * (1 / (r.xMax - r.xMin) + 1 / (r.yMax - r.yMin));
    return std::abs(AreaWithin(noded, r) - AreaWithin(clip, r)) <= tolerance;
}

/// What is known of a clip.
struct Clipped {
    Handle geometry;
    Shape shape;
};

/// Nothing where the library fails, or where its result has not the area that it must have.
std::optional<Clipped> ClippedByLibrary(const Shape& shape, const Bounds& r) {
    const Shape noded = Noded(shape, r);
    Handle geometry(GEOSClipByRect_r(GeosContext(), ToGeos(noded).get(), r.xMin, r.yMin, r.xMax, r.yMax));
    if (!geometry) return std::nullopt;
    Shape cut = FromGeos(*geometry, shape);
    if (!HoldsAsMuch(cut, noded, r) || !(cut.IsEmpty() || r.Holds(cut.Extent()))) return std::nullopt;
    return Clipped{std::move(geometry), std::move(cut)};
}

/// Once more from the whole, whose rings turn the way they seem to: thinned out they may cross themselves,
/// and the library then takes the inside of some for the outside.
std::optional<Clipped> ClippedByLibrary(const Shape& shape, const Bounds& r, const Shape& whole) {
    auto clipped = ClippedByLibrary(shape, r);
    return clipped || &shape == &whole ? std::move(clipped) : ClippedByLibrary(whole, r);
}

/// The neighbourhood of the rectangle, cut somewhere around it where nothing is in doubt; null where there is
/// doubt everywhere. Unlike in width and height, so that a slanted border through a corner misses the new
/// corners.
Handle Neighbourhood(const Shape& shape, const Bounds& r, const Shape& whole) {
    constexpr struct {
        double x, y;
    } kMargins[] = {{0.0625, 0.0811}, {0.1093, 0.0717}, {0.0523, 0.1217}, {0.1217, 0.0311}};
    for (const auto& margin : kMargins) {
        const Bounds around = r.GrownBy(margin.x * (r.xMax - r.xMin), margin.y * (r.yMax - r.yMin));
        if (auto clipped = ClippedByLibrary(shape, around, whole)) return std::move(clipped->geometry);
    }
    return nullptr;
}

/// What an overlay gives of valid areas.
Shape CutByOverlay(const GEOSGeometry& areas, const Bounds& r, const Shape& like) {
    Shape cut = FromGeos(*Owned(GEOSIntersection_r(GeosContext(), &areas, ToGeos(r).get())), like);
    if (!cut.IsEmpty() && !r.Holds(cut.Extent())) {
        Shape moved = WithVertices(cut, [&](Coordinate& c) {
            c = {std::clamp(c.x, r.xMin, r.xMax), std::clamp(c.y, r.yMin, r.yMax)};
        });
        cut = IsValid(*ToGeos(moved)) ? std::move(moved) : Mended(moved);
    }
    return WithVertices(cut, [](Coordinate& c) { c = {c.x, c.y}; });  // the library guesses at heights
}

Shape CutMended(const Shape& mended, const Bounds& r) {
    if (Covers(mended, r)) return RectangleLike(mended, r);
    auto clipped = ClippedByLibrary(mended, r);
    if (clipped && IsValid(*clipped->geometry)) return std::move(clipped->shape);
    return CutByOverlay(*ToGeos(mended), r, mended);
}

/// Mends no more than it must: what lies around the rectangle, or the whole, once for all rectangles.
Shape CutDoubtful(const Shape& shape, const Bounds& r, const Shape& whole, Mending& mending) {
    if (const Handle around = mending.Made() ? nullptr : Neighbourhood(shape, r, whole)) {
        if (IsValid(*around)) return CutByOverlay(*around, r, shape);
        try {
            return CutMended(Mended(FromGeos(*around, shape)), r);
        } catch (const RuntimeError& failure) {
            mending.Refuse(failure.Description());
            return shape.EmptyCopy();
        }
    }
    const auto mended = mending.Of(whole);
    return mended ? CutMended(*mended, r) : shape.EmptyCopy();
}

/// With heights where they are those of vertices and crossings.
Shape Cut(const Shape& shape, const Bounds& r, const Shape& whole, Mending& mending) {
    if (Covers(shape, r)) return RectangleLike(shape, r);
    auto clipped = ClippedByLibrary(shape, r, whole);
    if (clipped && IsValid(*clipped->geometry)) return std::move(clipped->shape);
    return CutDoubtful(shape, r, whole, mending);
}

}  // namespace

Shape ClipAreas(const Shape& shape, const Bounds& r, const Shape& whole, Mending& mending) {
    if (!r.HasArea()) return shape.EmptyCopy();
    Shape cut = Cut(shape, r, whole, mending);
    for (std::size_t area = 0; area < cut.AreaCount(); ++area)
        for (std::size_t n = cut.AreaBegin(area); n < cut.AreaEnd(area); ++n)
            if ((AreaWithin(cut.PathAt(n), r) > 0) != (n == cut.AreaBegin(area))) cut.ReversePath(n);
    return shape.hasZ ? WithHeightsOf(shape, cut) : cut;
}

}  // namespace orvo::geos
