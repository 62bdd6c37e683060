#include "tiling/vector/geometry/Convert.h"

#include <vector>

namespace orvo::geos {
namespace {

static_assert(sizeof(Coordinate) == 3 * sizeof(double), "a path is a buffer of x, y, z for the library");

GEOSCoordSequence* Sequence(Shape::Path path) {
    const double* numbers = path.empty() ? nullptr : &path.front().x;
    GEOSCoordSequence* sequence =
        GEOSCoordSeq_copyFromBuffer_r(GeosContext(), numbers, static_cast<unsigned>(path.size()), 1, 0);
    if (sequence == nullptr) FailAsGeosDid();
    return sequence;
}

Handle Line(Shape::Path path) {
    return Owned(GEOSGeom_createLineString_r(GeosContext(), Sequence(path)));
}

Handle Area(const Shape& shape, std::size_t area) {
    std::vector<Handle> rings;
    for (std::size_t n = shape.AreaBegin(area); n < shape.AreaEnd(area); ++n)
        rings.push_back(Owned(GEOSGeom_createLinearRing_r(GeosContext(), Sequence(shape.PathAt(n)))));
    std::vector<GEOSGeometry*> holes;
    GEOSGeometry* shell = rings.front().release();
    for (std::size_t n = 1; n < rings.size(); ++n) holes.push_back(rings[n].release());
    return Owned(
        GEOSGeom_createPolygon_r(GeosContext(), shell, holes.data(), static_cast<unsigned>(holes.size())));
}

Handle Collection(int type, std::vector<Handle> parts) {
    std::vector<GEOSGeometry*> given;
    given.reserve(parts.size());
    for (Handle& part : parts) given.push_back(part.release());
    return Owned(
        GEOSGeom_createCollection_r(GeosContext(), type, given.data(), static_cast<unsigned>(given.size())));
}

/// Of a shape without coordinates.
Handle Empty(const Shape& shape) {
    switch (shape.type) {
        case GeometryType::Polygon:
            return Owned(GEOSGeom_createEmptyPolygon_r(GeosContext()));
        case GeometryType::Polyline:
            return Owned(GEOSGeom_createEmptyLineString_r(GeosContext()));
        default:
            return Owned(GEOSGeom_createEmptyPoint_r(GeosContext()));
    }
}

int CollectionType(const Shape& shape) {
    switch (shape.type) {
        case GeometryType::Polygon:
            return GEOS_MULTIPOLYGON;
        case GeometryType::Polyline:
            return GEOS_MULTILINESTRING;
        default:
            return GEOS_MULTIPOINT;
    }
}

void AppendPath(const GEOSGeometry& path, Shape& into) {
    const GEOSCoordSequence* sequence = GEOSGeom_getCoordSeq_r(GeosContext(), &path);
    unsigned count = 0;
    Check(GEOSCoordSeq_getSize_r(GeosContext(), sequence, &count));
    if (count == 0) return;
    std::vector<Coordinate> coordinates(count);
    Check(GEOSCoordSeq_copyToBuffer_r(GeosContext(), sequence, &coordinates.front().x, 1, 0));
    if (GEOSGeomTypeId_r(GeosContext(), &path) == GEOS_POINT)
        into.AddPoint(coordinates.front());
    else
        into.AddPath(coordinates);
}

void AppendArea(const GEOSGeometry& polygon, Shape& into) {
    AppendPath(*GEOSGetExteriorRing_r(GeosContext(), &polygon), into);
    const int holes = GEOSGetNumInteriorRings_r(GeosContext(), &polygon);
    for (int n = 0; n < holes; ++n) AppendPath(*GEOSGetInteriorRingN_r(GeosContext(), &polygon, n), into);
    into.EndArea();
}

void Append(const GEOSGeometry& geometry, Shape& into) {
    if (Answer(GEOSisEmpty_r(GeosContext(), &geometry))) return;
    const int type = GEOSGeomTypeId_r(GeosContext(), &geometry);
    if (type >= GEOS_MULTIPOINT) {
        const int parts = GEOSGetNumGeometries_r(GeosContext(), &geometry);
        for (int n = 0; n < parts; ++n) Append(*GEOSGetGeometryN_r(GeosContext(), &geometry, n), into);
    } else if (type == GEOS_POLYGON) {
        if (into.type == GeometryType::Polygon) AppendArea(geometry, into);
    } else if ((type == GEOS_POINT) == into.IsMadeOfPoints() && into.type != GeometryType::Polygon) {
        AppendPath(geometry, into);
    }
}

}  // namespace

Handle ToGeos(const Shape& shape) {
    std::vector<Handle> parts;
    if (shape.type == GeometryType::Polygon) {
        for (std::size_t n = 0; n < shape.AreaCount(); ++n) parts.push_back(Area(shape, n));
    } else if (shape.type == GeometryType::Polyline) {
        for (std::size_t n = 0; n < shape.PathCount(); ++n) parts.push_back(Line(shape.PathAt(n)));
    } else {
        for (const Coordinate& c : shape.Points())
            parts.push_back(Owned(GEOSGeom_createPoint_r(GeosContext(), Sequence({&c, 1}))));
    }
    const bool isMulti = shape.isMulti || shape.type == GeometryType::Multipoint || parts.size() > 1;
    if (isMulti) return Collection(CollectionType(shape), std::move(parts));
    return parts.empty() ? Empty(shape) : std::move(parts.front());
}

Handle ToGeos(const Bounds& b) {
    const Coordinate low{b.xMin, b.yMin}, high{b.xMax, b.yMax};
    if (SamePlace(low, high)) return Owned(GEOSGeom_createPointFromXY_r(GeosContext(), low.x, low.y));
    if (b.HasArea()) return Owned(GEOSGeom_createRectangle_r(GeosContext(), b.xMin, b.yMin, b.xMax, b.yMax));
    const Coordinate ends[] = {low, high};
    return Line(ends);
}

Shape FromGeos(const GEOSGeometry& geometry, const Shape& like) {
    Shape shape = like.EmptyCopy();
    Append(geometry, shape);
    return shape;
}

}  // namespace orvo::geos
