// Areas cut to a rectangle.
#pragma once

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// What the rectangle holds of the areas, by the even-odd rule for each of them. Clipped by GEOS, which is
/// quick but not always right; where the result is not valid or has not the area that it must have, by GEOS's
/// overlay. Shells turn left, holes right.
/// @param whole what `shape` has been reduced from, or itself
Shape ClipAreas(const Shape& shape, const Bounds& rectangle, const Shape& whole);

}  // namespace orvo::geos
