#include "tiling/vector/geometry/Library.h"

#include <geos_c.h>

#include <string>

#include "platform/RuntimeError.h"

namespace orvo::geos {
namespace {

/// One thread's way into the library, and what it last complained about.
class Context {
  public:
    Context() : handle_(GEOS_init_r()) { GEOSContext_setErrorMessageHandler_r(handle_, &Keep, &complaint_); }
    ~Context() { GEOS_finish_r(handle_); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    static Context& Current() {
        thread_local Context context;
        return context;
    }

    GEOSContextHandle_t Get() const { return handle_; }
    [[noreturn]] void Fail() {
        const std::string text = complaint_.empty() ? "no reason given" : std::move(complaint_);
        complaint_.clear();
        throw RuntimeError(Fault::AutomationError, "the geometry library failed: " + text);
    }

  private:
    static void Keep(const char* text, void* complaint) { *static_cast<std::string*>(complaint) = text; }

    GEOSContextHandle_t handle_;
    std::string complaint_;
};

GEOSContextHandle_t Geos() {
    return Context::Current().Get();
}

Handle Owned(GEOSGeometry* geometry) {
    if (geometry == nullptr) Context::Current().Fail();
    return Handle(geometry);
}

bool Answer(char answer) {
    if (answer != 0 && answer != 1) Context::Current().Fail();
    return answer == 1;
}

void Check(int done) {
    if (done == 0) Context::Current().Fail();
}

GEOSCoordSequence* Sequence(Shape::Path path, bool hasZ) {
    thread_local std::vector<double> numbers;
    numbers.clear();
    for (const Coordinate& c : path) {
        numbers.push_back(c.x);
        numbers.push_back(c.y);
        if (hasZ) numbers.push_back(c.z);
    }
    GEOSCoordSequence* sequence = GEOSCoordSeq_copyFromBuffer_r(
        Geos(), numbers.data(), static_cast<unsigned>(path.size()), hasZ ? 1 : 0, 0);
    if (sequence == nullptr) Context::Current().Fail();
    return sequence;
}

Handle Line(Shape::Path path, bool hasZ) {
    return Owned(GEOSGeom_createLineString_r(Geos(), Sequence(path, hasZ)));
}

Handle Area(const Shape& shape, std::size_t area) {
    std::vector<Handle> rings;
    for (std::size_t n = shape.AreaBegin(area); n < shape.AreaEnd(area); ++n)
        rings.push_back(Owned(GEOSGeom_createLinearRing_r(Geos(), Sequence(shape.PathAt(n), shape.hasZ))));
    std::vector<GEOSGeometry*> holes;
    GEOSGeometry* shell = rings.front().release();
    for (std::size_t n = 1; n < rings.size(); ++n) holes.push_back(rings[n].release());
    return Owned(GEOSGeom_createPolygon_r(Geos(), shell, holes.data(), static_cast<unsigned>(holes.size())));
}

Handle Collection(int type, std::vector<Handle> parts) {
    std::vector<GEOSGeometry*> given;
    given.reserve(parts.size());
    for (Handle& part : parts) given.push_back(part.release());
    return Owned(
        GEOSGeom_createCollection_r(Geos(), type, given.data(), static_cast<unsigned>(given.size())));
}

Handle PointOrPoints(const Shape& shape) {
    if (shape.type == GeometryType::Point && shape.IsEmpty())
        return Owned(GEOSGeom_createEmptyPoint_r(Geos()));
    std::vector<Handle> parts;
    for (const Coordinate& c : shape.Points())
        parts.push_back(Owned(GEOSGeom_createPoint_r(Geos(), Sequence({&c, 1}, shape.hasZ))));
    return shape.type == GeometryType::Point ? std::move(parts.front())
                                             : Collection(GEOS_MULTIPOINT, std::move(parts));
}

std::vector<Coordinate> Coordinates(const GEOSGeometry& path) {
    const GEOSCoordSequence* sequence = GEOSGeom_getCoordSeq_r(Geos(), &path);
    unsigned count = 0;
    Check(GEOSCoordSeq_getSize_r(Geos(), sequence, &count));
    std::vector<double> numbers(std::size_t{3} * count);
    Check(GEOSCoordSeq_copyToBuffer_r(Geos(), sequence, numbers.data(), 1, 0));
    std::vector<Coordinate> coordinates(count);
    for (std::size_t n = 0; n < count; ++n)
        coordinates[n] = {numbers[3 * n], numbers[3 * n + 1], numbers[3 * n + 2]};
    return coordinates;
}

void TakeArea(const GEOSGeometry& polygon, Shape& into) {
    into.AddPath(Coordinates(*GEOSGetExteriorRing_r(Geos(), &polygon)));
    const int holes = GEOSGetNumInteriorRings_r(Geos(), &polygon);
    for (int n = 0; n < holes; ++n) into.AddPath(Coordinates(*GEOSGetInteriorRingN_r(Geos(), &polygon, n)));
    into.EndArea();
}

void Take(const GEOSGeometry& geometry, Shape& into) {
    if (GEOSisEmpty_r(Geos(), &geometry) == 1) return;
    const int type = GEOSGeomTypeId_r(Geos(), &geometry);
    if (type >= GEOS_MULTIPOINT) {
        const int parts = GEOSGetNumGeometries_r(Geos(), &geometry);
        for (int n = 0; n < parts; ++n) Take(*GEOSGetGeometryN_r(Geos(), &geometry, n), into);
        return;
    }
    const bool isLine = type == GEOS_LINESTRING || type == GEOS_LINEARRING;
    if (type == GEOS_POLYGON && into.type == GeometryType::Polygon) TakeArea(geometry, into);
    if (isLine && into.type == GeometryType::Polyline) into.AddPath(Coordinates(geometry));
    const bool wantsPoints = into.type == GeometryType::Point || into.type == GeometryType::Multipoint;
    if (type == GEOS_POINT && wantsPoints) into.AddPoint(Coordinates(geometry).front());
}

}  // namespace

void Destroy::operator()(GEOSGeom_t* geometry) const {
    GEOSGeom_destroy_r(Geos(), geometry);
}

Handle ToGeos(const Shape& shape) {
    std::vector<Handle> parts;
    const bool isArea = shape.type == GeometryType::Polygon;
    if (!isArea && shape.type != GeometryType::Polyline) return PointOrPoints(shape);
    if (isArea) {
        for (std::size_t n = 0; n < shape.AreaCount(); ++n) parts.push_back(Area(shape, n));
    } else {
        for (std::size_t n = 0; n < shape.PathCount(); ++n)
            parts.push_back(Line(shape.PathAt(n), shape.hasZ));
    }
    if (parts.size() == 1 && !shape.isMulti) return std::move(parts.front());
    return Collection(isArea ? GEOS_MULTIPOLYGON : GEOS_MULTILINESTRING, std::move(parts));
}

Handle ToGeos(const Bounds& b) {
    const Coordinate low{b.xMin, b.yMin}, high{b.xMax, b.yMax};
    if (SamePlace(low, high)) return Owned(GEOSGeom_createPointFromXY_r(Geos(), low.x, low.y));
    if (b.HasArea()) return Owned(GEOSGeom_createRectangle_r(Geos(), b.xMin, b.yMin, b.xMax, b.yMax));
    const Coordinate ends[] = {low, high};
    return Line(ends, false);
}

Shape FromGeos(const GEOSGeom_t& geometry, const Shape& like) {
    Shape shape = like.EmptyCopy();
    Take(geometry, shape);
    return shape;
}

bool IsValid(const GEOSGeom_t& geometry) {
    return Answer(GEOSisValid_r(Geos(), &geometry));
}

Handle MadeValid(const GEOSGeom_t& geometry) {
    return Owned(GEOSMakeValid_r(Geos(), &geometry));
}

Handle Intersection(const GEOSGeom_t& a, const GEOSGeom_t& b) {
    return Owned(GEOSIntersection_r(Geos(), &a, &b));
}

bool Within(const GEOSGeom_t& a, const GEOSGeom_t& b) {
    return Answer(GEOSWithin_r(Geos(), &a, &b));
}

bool Crosses(const GEOSGeom_t& a, const GEOSGeom_t& b) {
    return Answer(GEOSCrosses_r(Geos(), &a, &b));
}

bool Overlaps(const GEOSGeom_t& a, const GEOSGeom_t& b) {
    return Answer(GEOSOverlaps_r(Geos(), &a, &b));
}

}  // namespace orvo::geos
