// Shapes thinned out where they are far away.
#pragma once

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// The same shape as far as `range` can tell: every segment that meets the range is there unchanged, and what
/// runs outside goes around the range as before, in fewer steps; parts that stay on one side of it are gone.
///
/// So whatever lies in the range is cut from it vertex by vertex as from the whole. It may cross itself
/// outside.
Shape Reduced(const Shape& shape, const Bounds& range);

}  // namespace orvo::geos
