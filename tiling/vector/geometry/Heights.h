// Heights for vertices that an overlay made.
#pragma once

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// The same rings with the heights of `source`: a vertex of the source keeps its own, one on a segment gets
/// the height there, any other one between its neighbours along the ring.
Shape WithHeightsOf(const Shape& source, const Shape& rings);

}  // namespace orvo::geos
