// Geometries for tests: from text, asked by the library itself, and measured.
#pragma once

#include <geos_c.h>

#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/memory/Envelope.h"
#include "tiling/vector/geometry/Geometry.h"

namespace orvo::geos::test {

inline GEOSContextHandle_t Library() {
    static GEOSContextHandle_HS* const handle = GEOS_init_r();
    return handle;
}

struct Free {
    void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(Library(), geometry); }
};
using Reference = std::unique_ptr<GEOSGeometry, Free>;

inline Reference FromText(const std::string& wkt) {
    GEOSWKTReader* reader = GEOSWKTReader_create_r(Library());
    Reference geometry(GEOSWKTReader_read_r(Library(), reader, wkt.c_str()));
    GEOSWKTReader_destroy_r(Library(), reader);
    if (!geometry) throw std::invalid_argument(wkt);
    return geometry;
}

inline std::string ToText(const GEOSGeometry& geometry) {
    GEOSWKTWriter* writer = GEOSWKTWriter_create_r(Library());
    GEOSWKTWriter_setTrim_r(Library(), writer, 1);
    GEOSWKTWriter_setOutputDimension_r(Library(), writer, 3);
    char* text = GEOSWKTWriter_write_r(Library(), writer, &geometry);
    GEOSWKTWriter_destroy_r(Library(), writer);
    std::string result = text;
    GEOSFree_r(Library(), text);
    return result;
}

/// The library's own WKB of a geometry.
inline std::vector<unsigned char> Bytes(const GEOSGeometry& geometry) {
    GEOSWKBWriter* writer = GEOSWKBWriter_create_r(Library());
    GEOSWKBWriter_setOutputDimension_r(Library(), writer, 3);
    std::size_t size = 0;
    unsigned char* bytes = GEOSWKBWriter_write_r(Library(), writer, &geometry, &size);
    GEOSWKBWriter_destroy_r(Library(), writer);
    std::vector<unsigned char> result(bytes, bytes + size);
    GEOSFree_r(Library(), bytes);
    return result;
}

inline Reference FromBytes(const std::vector<unsigned char>& bytes) {
    GEOSWKBReader* reader = GEOSWKBReader_create_r(Library());
    Reference geometry(GEOSWKBReader_read_r(Library(), reader, bytes.data(), bytes.size()));
    GEOSWKBReader_destroy_r(Library(), reader);
    if (!geometry) throw std::invalid_argument("the library cannot read the WKB");
    return geometry;
}

inline std::shared_ptr<Geometry> Read(const std::string& wkt) {
    return Geometry::FromWkb(Bytes(*FromText(wkt)));
}

inline Reference Reread(const Geometry& geometry) {
    return FromBytes(geometry.ToWkb());
}

inline std::shared_ptr<IEnvelope> Rectangle(double xMin, double yMin, double xMax, double yMax) {
    auto envelope = std::make_shared<memory::Envelope>();
    envelope->XMin(xMin);
    envelope->YMin(yMin);
    envelope->XMax(xMax);
    envelope->YMax(yMax);
    return envelope;
}

/// An envelope as the library's polygon, line or point.
inline Reference ReferenceOf(const IEnvelope& e) {
    if (e.IsEmpty()) return FromText("POLYGON EMPTY");
    const bool wide = e.Width() > 0, high = e.Height() > 0;
    if (wide && high)
        return Reference(GEOSGeom_createRectangle_r(Library(), e.XMin(), e.YMin(), e.XMax(), e.YMax()));
    GEOSCoordSequence* ends = GEOSCoordSeq_create_r(Library(), wide || high ? 2 : 1, 2);
    GEOSCoordSeq_setXY_r(Library(), ends, 0, e.XMin(), e.YMin());
    if (!wide && !high) return Reference(GEOSGeom_createPoint_r(Library(), ends));
    GEOSCoordSeq_setXY_r(Library(), ends, 1, e.XMax(), e.YMax());
    return Reference(GEOSGeom_createLineString_r(Library(), ends));
}

/// Area of areas, length of lines, count of points.
inline double Measure(const GEOSGeometry& geometry) {
    double result = 0;
    const int dimension = GEOSGeom_getDimensions_r(Library(), &geometry);
    if (dimension == 2) GEOSArea_r(Library(), &geometry, &result);
    if (dimension == 1) GEOSLength_r(Library(), &geometry, &result);
    if (dimension == 0 && GEOSisEmpty_r(Library(), &geometry) == 0)
        result = GEOSGetNumGeometries_r(Library(), &geometry);
    return result;
}

struct Relations {
    bool within, crosses, overlaps;
    bool operator==(const Relations&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Relations& r) {
    return out << (r.within ? "within " : "") << (r.crosses ? "crosses " : "")
               << (r.overlaps ? "overlaps " : "");
}

inline Relations Ours(const Geometry& geometry, const std::shared_ptr<IEnvelope>& envelope) {
    return {geometry.Within(envelope), geometry.Crosses(envelope), geometry.Overlaps(envelope)};
}

inline Relations Theirs(const GEOSGeometry& geometry, const IEnvelope& envelope) {
    const Reference other = ReferenceOf(envelope);
    return {GEOSWithin_r(Library(), &geometry, other.get()) == 1,
            GEOSCrosses_r(Library(), &geometry, other.get()) == 1,
            GEOSOverlaps_r(Library(), &geometry, other.get()) == 1};
}

}  // namespace orvo::geos::test
