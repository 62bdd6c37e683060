// Geometries for tests: from text, asked by the library itself, and measured.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/memory/Envelope.h"
#include "tiling/vector/geometry/Convert.h"
#include "tiling/vector/geometry/Geometry.h"

namespace orvo::geos::test {

inline Handle FromText(const std::string& wkt) {
    return Owned(GEOSGeomFromWKT_r(GeosContext(), wkt.c_str()));
}

/// The library's own WKB of a geometry.
inline std::vector<unsigned char> Bytes(const GEOSGeometry& geometry) {
    GEOS_setWKBOutputDims_r(GeosContext(), 3);
    std::size_t size = 0;
    unsigned char* bytes = GEOSGeomToWKB_buf_r(GeosContext(), &geometry, &size);
    std::vector<unsigned char> result(bytes, bytes + size);
    GEOSFree_r(GeosContext(), bytes);
    return result;
}

inline std::shared_ptr<Geometry> Read(const std::string& wkt) {
    return Geometry::FromWkb(Bytes(*FromText(wkt)));
}

inline Handle Reread(const Geometry& geometry) {
    const auto bytes = geometry.ToWkb();
    return Owned(GEOSGeomFromWKB_buf_r(GeosContext(), bytes.data(), bytes.size()));
}

/// The same bytes for the same vertices, wherever rings start; none for an empty geometry.
inline std::vector<unsigned char> Normal(const Geometry& geometry) {
    const Handle normal = Reread(geometry);
    GEOSNormalize_r(GeosContext(), normal.get());
    return geometry.IsEmpty() ? std::vector<unsigned char>{} : Bytes(*normal);
}

inline std::shared_ptr<IEnvelope> Rectangle(double xMin, double yMin, double xMax, double yMax) {
    auto envelope = std::make_shared<memory::Envelope>();
    envelope->XMin(xMin), envelope->YMin(yMin), envelope->XMax(xMax), envelope->YMax(yMax);
    return envelope;
}

/// Area of areas, length of lines, count of points; what is of a lower dimension counts nothing.
inline double Measure(const GEOSGeometry& geometry, int dimension) {
    double result = 0;
    if (dimension == 2) GEOSArea_r(GeosContext(), &geometry, &result);
    if (dimension == 1) GEOSLength_r(GeosContext(), &geometry, &result);
    if (dimension == 0 && GEOSisEmpty_r(GeosContext(), &geometry) == 0)
        result = GEOSGetNumGeometries_r(GeosContext(), &geometry);
    return result;
}

inline int Dimension(const GEOSGeometry& geometry) {
    return GEOSGeom_getDimensions_r(GeosContext(), &geometry);
}

/// Within, crosses, overlaps, as "w", "c" and "o".
inline std::string Relations(bool within, bool crosses, bool overlaps) {
    return std::string(within ? "w" : "") + (crosses ? "c" : "") + (overlaps ? "o" : "");
}

inline std::string Ours(const Geometry& geometry, const std::shared_ptr<IEnvelope>& envelope) {
    return Relations(geometry.Within(envelope), geometry.Crosses(envelope), geometry.Overlaps(envelope));
}

inline std::string Theirs(const GEOSGeometry& geometry, const IEnvelope& envelope) {
    const Handle other = ToGeos(Bounds::Of(envelope));
    const auto ask = [&](auto predicate) { return predicate(GeosContext(), &geometry, other.get()) == 1; };
    return Relations(ask(GEOSWithin_r), ask(GEOSCrosses_r), ask(GEOSOverlaps_r));
}

}  // namespace orvo::geos::test
