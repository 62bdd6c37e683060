#include "tiling/vector/geometry/Mend.h"

#include <algorithm>
#include <vector>

#include "platform/RuntimeError.h"
#include "tiling/vector/geometry/Convert.h"
#include "tiling/vector/geometry/Heights.h"
#include "tiling/vector/geometry/Segment.h"
#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::geos {
namespace {

constexpr std::size_t kMostCrossings = 100'000;
constexpr std::chrono::seconds kLongest{60};

struct Edge {
    Coordinate from, to;
    double West() const { return std::min(from.x, to.x); }
    double East() const { return std::max(from.x, to.x); }
};

bool Cross(const Edge& a, const Edge& b) {
    if (std::max(a.from.y, a.to.y) < std::min(b.from.y, b.to.y)) return false;
    if (std::max(b.from.y, b.to.y) < std::min(a.from.y, a.to.y)) return false;
    return Side(a.from, a.to, b.from) * Side(a.from, a.to, b.to) < 0 &&
           Side(b.from, b.to, a.from) * Side(b.from, b.to, a.to) < 0;
}

std::vector<Edge> EdgesFromWest(const Shape& shape) {
    std::vector<Edge> edges;
    edges.reserve(shape.Points().size());
    for (std::size_t n = 0; n < shape.PathCount(); ++n) {
        const Shape::Path path = shape.PathAt(n);
        for (std::size_t i = 1; i < path.size(); ++i) edges.push_back({path[i - 1], path[i]});
    }
    std::ranges::sort(edges, {}, &Edge::West);
    return edges;
}

/// A line sweeps over the edges from west to east.
void RequireFewCrossings(const Shape& shape) {
    std::vector<Edge> swept;
    std::size_t crossings = 0;
    for (const Edge& edge : EdgesFromWest(shape)) {
        std::erase_if(swept, [&](const Edge& other) { return other.East() < edge.West(); });
        crossings += static_cast<std::size_t>(
            std::ranges::count_if(swept, [&](const Edge& other) { return Cross(edge, other); }));
        swept.push_back(edge);
        if (crossings > kMostCrossings)
            throw RuntimeError(static_cast<Long>(Fault::AutomationError),
                               "its border crosses itself more than " + std::to_string(kMostCrossings) +
                                   " times; mend it first, for example with ogr2ogr -makevalid");
        WorkLimit::Require();
    }
}

/// The border as lines that meet in their ends only.
Handle Noded(const Shape& shape) {
    Shape lines;
    lines.type = GeometryType::Polyline;
    for (std::size_t n = 0; n < shape.PathCount(); ++n) lines.AddPath(shape.PathAt(n));
    return Owned(GEOSUnaryUnion_r(GeosContext(), ToGeos(lines).get()));
}

Coordinate PlaceIn(const GEOSGeometry& face) {
    const Handle point = Owned(GEOSPointOnSurface_r(GeosContext(), &face));
    Coordinate place;
    Check(GEOSGeomGetX_r(GeosContext(), point.get(), &place.x));
    Check(GEOSGeomGetY_r(GeosContext(), point.get(), &place.y));
    return place;
}

/// Those of the faces that an odd number of rings goes around.
Handle OddFaces(const GEOSGeometry& faces, const Shape& shape) {
    std::vector<GEOSGeometry*> odd;
    const int count = GEOSGetNumGeometries_r(GeosContext(), &faces);
    for (int i = 0; i < count; ++i) {
        WorkLimit::Require();
        const GEOSGeometry& face = *GEOSGetGeometryN_r(GeosContext(), &faces, i);
        if (HoldsEvenOdd(shape, PlaceIn(face))) odd.push_back(GEOSGeom_clone_r(GeosContext(), &face));
    }
    return Owned(GEOSGeom_createCollection_r(GeosContext(), GEOS_MULTIPOLYGON, odd.data(),
                                             static_cast<unsigned>(odd.size())));
}

}  // namespace

Shape Mended(const Shape& shape) {
    const WorkLimit limit(kLongest);
    RequireFewCrossings(shape);
    const Handle lines = Noded(shape);
    const GEOSGeometry* const border = lines.get();
    Handle areas = OddFaces(*Owned(GEOSPolygonize_r(GeosContext(), &border, 1)), shape);
    // Faces have a border in common where two rings, or one twice, run along the same line.
    if (!Answer(GEOSisValid_r(GeosContext(), areas.get())))
        areas = Owned(GEOSUnaryUnion_r(GeosContext(), areas.get()));
    Shape mended = WithVertices(FromGeos(*areas, shape), [](Coordinate& c) { c = {c.x, c.y}; });
    mended.isMulti = mended.isMulti || mended.AreaCount() > 1;
    return mended;
}

std::shared_ptr<const Shape> Mending::Of(const Shape& whole) {
    if (mended_ || !refusal_.empty()) return mended_;
    try {
        const Shape flat = Mended(whole);
        mended_ = std::make_shared<const Shape>(whole.hasZ ? WithHeightsOf(whole, flat) : flat);
    } catch (const RuntimeError& failure) {
        refusal_ = failure.Description();
    }
    return mended_;
}

}  // namespace orvo::geos
