#include "platform/gdal/FeatureParts.h"

#include <ogr_geometry.h>

#include <memory>

#include "platform/gdal/ErrorCapture.h"

namespace orvo::gdal {
namespace {

using Handle = std::unique_ptr<OGRGeometry>;

void Export(OGRGeometry& geometry, FeatureParts& parts) {
    parts.measures = parts.measures || geometry.IsMeasured() != 0;
    geometry.closeRings();
    auto& wkb = parts.wkb.emplace_back(geometry.WkbSize());
    if (geometry.exportToWkb(wkbNDR, wkb.data(), wkbVariantIso) == OGRERR_NONE) return;
    parts.wkb.pop_back();
    parts.reason = "its geometry cannot be read";
}

void Add(const OGRGeometry& geometry, FeatureParts& parts) {
    if (geometry.IsEmpty()) return;
    const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
    if (type == wkbGeometryCollection) {
        for (const OGRGeometry* member : *geometry.toGeometryCollection()) Add(*member, parts);
    } else if (type == wkbTriangle || type == wkbTIN || type == wkbPolyhedralSurface) {
        parts.surfaces = true;
        const Handle areas(OGRGeometryFactory::forceToMultiPolygon(geometry.clone()));
        if (wkbFlatten(areas->getGeometryType()) == wkbMultiPolygon)
            Export(*areas, parts);
        else
            parts.reason = std::string("its kind is not supported: ") + geometry.getGeometryName();
    } else if (geometry.hasCurveGeometry(TRUE) != 0 || OGR_GT_IsNonLinear(type) != 0) {
        parts.linearised = parts.linearised || geometry.hasCurveGeometry(TRUE) != 0;
        const Handle lines(geometry.getLinearGeometry());
        if (lines && OGR_GT_IsNonLinear(lines->getGeometryType()) == 0)
            Add(*lines, parts);
        else
            parts.reason = std::string("its curves cannot be drawn as lines: ") + geometry.getGeometryName();
    } else {
        const Handle copy(geometry.clone());
        Export(*copy, parts);
    }
}

}  // namespace

FeatureParts PartsOf(const OGRGeometry* geometry) {
    FeatureParts parts;
    if (geometry == nullptr) {
        parts.reason = "it has no geometry";
        parts.holdsNothing = true;
        return parts;
    }
    const ErrorCapture ignored;
    Add(*geometry, parts);
    parts.holdsNothing = parts.wkb.empty() && parts.reason.empty();
    if (parts.holdsNothing) parts.reason = "its geometry is empty";
    return parts;
}

}  // namespace orvo::gdal
