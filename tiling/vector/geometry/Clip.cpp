#include "tiling/vector/geometry/Clip.h"

#include <algorithm>
#include <optional>

#include "platform/RuntimeError.h"
#include "tiling/vector/geometry/Convert.h"
#include "tiling/vector/geometry/CutLines.h"
#include "tiling/vector/geometry/CutPolygons.h"
#include "tiling/vector/geometry/Heights.h"
#include "tiling/vector/geometry/Validity.h"

namespace orvo::geos {
namespace {

bool IsValid(const GEOSGeometry& geometry) {
    return Answer(GEOSisValid_r(GeosContext(), &geometry));
}

Handle MadeValid(const GEOSGeometry& geometry) {
    return Owned(GEOSMakeValid_r(GeosContext(), &geometry));
}

/// Brings back into the rectangle what an overlay put next to it.
Shape MovedInside(const Shape& shape, const Bounds& r) {
    Shape moved = shape.EmptyCopy();
    for (std::size_t area = 0; area < shape.AreaCount(); ++area) {
        for (std::size_t n = shape.AreaBegin(area); n < shape.AreaEnd(area); ++n) {
            std::vector<Coordinate> ring(shape.PathAt(n).begin(), shape.PathAt(n).end());
            for (Coordinate& c : ring)
                c = {std::clamp(c.x, r.xMin, r.xMax), std::clamp(c.y, r.yMin, r.yMax), c.z};
            moved.AddPath(ring);
        }
        moved.EndArea();
    }
    return moved;
}

/// The neighbourhood of the rectangle, cut somewhere around it where nothing is in doubt; else the whole
/// shape. Unlike in width and height, so that a slanted border through a corner misses the new corners.
Shape Neighbourhood(const Shape& shape, const Bounds& r) {
    constexpr struct {
        double x, y;
    } kMargins[] = {{0.0625, 0.0811}, {0.1093, 0.0717}, {0.0523, 0.1217}, {0.1217, 0.0311}};
    for (const auto& margin : kMargins) {
        auto cut = CutPolygons(shape, r.GrownBy(margin.x * (r.xMax - r.xMin), margin.y * (r.yMax - r.yMin)));
        if (cut) return std::move(*cut);
    }
    return shape;
}

Shape CutByOverlay(const Shape& shape, const Bounds& rectangle) {
    Shape around = Neighbourhood(shape, rectangle);
    if (around.IsEmpty()) return around;
    Handle area = ToGeos(around);
    if (!IsValid(*area)) area = MadeValid(*area);
    Shape cut =
        FromGeos(*Owned(GEOSIntersection_r(GeosContext(), area.get(), ToGeos(rectangle).get())), shape);
    if (!cut.IsEmpty() && !rectangle.Holds(cut.Extent())) {
        cut = MovedInside(cut, rectangle);
        const Handle moved = ToGeos(cut);
        if (!IsValid(*moved)) cut = FromGeos(*MadeValid(*moved), shape);
    }
    return shape.hasZ ? WithHeightsOf(shape, cut) : cut;
}

bool IsRectangle(const Shape& cut, const Bounds& r) {
    const auto isCorner = [&](const Coordinate& c) {
        return (c.x == r.xMin || c.x == r.xMax) && (c.y == r.yMin || c.y == r.yMax);
    };
    return cut.PathCount() == 1 && cut.Points().size() == 5 && std::ranges::all_of(cut.Points(), isCorner);
}

Shape ClipAreas(const Shape& shape, const Bounds& rectangle) {
    if (!rectangle.HasArea()) return shape.EmptyCopy();
    auto cut = CutPolygons(shape, rectangle);
    const bool isSound = cut && (cut->IsEmpty() || IsRectangle(*cut, rectangle) || IsPlainlyValid(*cut) ||
                                 IsValid(*ToGeos(*cut)));
    return isSound ? std::move(*cut) : CutByOverlay(shape, rectangle);
}

}  // namespace

Shape Clip(const Shape& shape, const Bounds& rectangle) {
    if (shape.type == GeometryType::Other)
        throw RuntimeError(Fault::PropertyNotSupported, "clipping a geometry that is no point, line or area");
    if (rectangle.IsEmpty() || !shape.Extent().Meets(rectangle)) return shape.EmptyCopy();
    if (rectangle.Holds(shape.Extent())) {
        const bool wouldBeLine = shape.type == GeometryType::Polygon && !rectangle.HasArea();
        return wouldBeLine ? shape.EmptyCopy() : shape;
    }
    switch (shape.type) {
        case GeometryType::Polygon:
            return ClipAreas(shape, rectangle);
        case GeometryType::Polyline:
            return CutLines(shape, rectangle);
        default:
            return CutPoints(shape, rectangle);
    }
}

}  // namespace orvo::geos
