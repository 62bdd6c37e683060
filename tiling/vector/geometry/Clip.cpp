#include "tiling/vector/geometry/Clip.h"

#include "platform/RuntimeError.h"
#include "tiling/vector/geometry/ClipAreas.h"
#include "tiling/vector/geometry/CutLines.h"

namespace orvo::geos {

Shape Clip(const Shape& shape, const Bounds& rectangle, const Shape& whole, Mending& mending) {
    if (shape.type == GeometryType::Other)
        throw RuntimeError(Fault::PropertyNotSupported, "clipping a geometry that is no point, line or area");
    if (rectangle.IsEmpty() || !shape.Extent().Meets(rectangle)) return shape.EmptyCopy();
    if (rectangle.Holds(shape.Extent())) {
        const bool wouldBeLine = shape.type == GeometryType::Polygon && !rectangle.HasArea();
        return wouldBeLine ? shape.EmptyCopy() : shape;
    }
    switch (shape.type) {
        case GeometryType::Polygon:
            return ClipAreas(shape, rectangle, whole, mending);
        case GeometryType::Polyline:
            return CutLines(shape, rectangle);
        default:
            return CutPoints(shape, rectangle);
    }
}

}  // namespace orvo::geos
