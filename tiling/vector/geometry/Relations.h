// How a shape lies to a rectangle, by Simple Features. Ours, because the library's own predicates, prepared
// ones too, walk and index every vertex for each tile, where bounds and one walk around the tile nearly
// always tell.
#pragma once

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// What a walk over the vertices tells; `Doubt` where rounding could decide.
enum class Finding { No, Yes, Doubt };

/// Whether a line, or a boundary of an area, has a point inside the rectangle, off its edges.
Finding EntersInside(const Shape& shape, const Bounds& rectangle);

// The answers of the library's own predicates on valid shapes, mostly without asking it. An empty shape or
// rectangle gives false. An area that crosses itself is answered by its boundary: it overlaps when a part of
// its boundary runs inside the rectangle and another outside.

// `whole` is what the library is asked about where `shape` has been reduced around the rectangle.

bool Within(const Shape& shape, const Bounds& rectangle, const Shape& whole);
bool Crosses(const Shape& shape, const Bounds& rectangle, const Shape& whole);
bool Overlaps(const Shape& shape, const Bounds& rectangle, const Shape& whole);

/// Whether an area holds the whole rectangle, which has an area itself.
bool Covers(const Shape& shape, const Bounds& rectangle);

}  // namespace orvo::geos
