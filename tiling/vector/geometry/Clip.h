// Shapes cut to a rectangle, whatever their kind and however they lie.
#pragma once

#include "tiling/vector/geometry/Mend.h"
#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// What the closed rectangle holds of the shape, in the shape's own dimension: of an area no lines or points,
/// of a line no points.
///
/// The result is valid, lies in the rectangle, keeps its kind, and keeps heights: a cut gets the height of
/// the segment there, a corner of the rectangle one between its neighbours along the ring. Areas are cut
/// quickly and checked; where that leaves a doubt, by the library's overlay; an area that is not valid is
/// repaired on the way (even-odd rule). What the rectangle holds as a whole stays as it is, valid or not.
/// Fails with number 440 where the library does.
/// @param whole what `shape` has been reduced from, or itself
/// @param mending of the whole. Where it refuses, or a part of it cannot be mended, the result is empty.
Shape Clip(const Shape& shape, const Bounds& rectangle, const Shape& whole, Mending& mending);

}  // namespace orvo::geos
