// Areas cut to a rectangle.
#pragma once

#include "tiling/vector/geometry/Mend.h"
#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// What the rectangle holds of the areas, by the even-odd rule for each of them. Clipped by GEOS, which is
/// quick but not always right; where the result is not valid or has not the area that it must have, by GEOS's
/// overlay. Shells turn left, holes right.
/// @param whole what `shape` has been reduced from, or itself
/// @param mending of the whole. Where it refuses, or a part of it cannot be mended, the result is empty.
Shape ClipAreas(const Shape& shape, const Bounds& rectangle, const Shape& whole, Mending& mending);

}  // namespace orvo::geos
