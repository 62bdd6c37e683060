// Points and lines cut to a rectangle.
#pragma once

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// The points that the closed rectangle holds.
Shape CutPoints(const Shape& shape, const Bounds& rectangle);

/// What the closed rectangle holds of the lines, sections along its edges with it; a mere contact gives
/// nothing.
Shape CutLines(const Shape& shape, const Bounds& rectangle);

}  // namespace orvo::geos
