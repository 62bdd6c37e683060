// Heights for vertices that a clip or an overlay made.
#pragma once

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// The same rings, with a height for each vertex that has none: where it lies on a border of `source` the one
/// there, else one between its neighbours along the ring, evenly by distance, or the source's mean.
Shape WithHeightsOf(const Shape& source, const Shape& rings);

}  // namespace orvo::geos
