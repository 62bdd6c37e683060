// Areas cut to a rectangle.
#pragma once

#include <optional>

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// What the rectangle holds of the areas, by the even-odd rule for each of them.
///
/// Nothing where the answer hangs on rounding: a vertex on an edge or next to it, a crossing at a corner, two
/// crossings in one place, borders that cross each other between two crossings. The result is made of rings
/// that follow the input and the edges in turn; where the input is valid, so is the result but for rounding,
/// and the caller checks that.
std::optional<Shape> CutPolygons(const Shape& shape, const Bounds& rectangle);

}  // namespace orvo::geos
