// Shapes as geometries of GEOS, and back.
#pragma once

#include "tiling/vector/geometry/GeosContext.h"
#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

// Each of these fails with number 440 and the library's own text.

/// With room for heights, whether the shape has them or not. Not for shapes of type `Other`.
Handle ToGeos(const Shape& shape);
/// The rectangle as a polygon, or as a line or a point where it has no area.
Handle ToGeos(const Bounds& bounds);
/// The parts of `geometry` that are of the kind of `like`, whatever collection they stand in.
Shape FromGeos(const GEOSGeometry& geometry, const Shape& like);

}  // namespace orvo::geos
