// The GEOS library: shapes handed over and taken back, and what is asked of it.
#pragma once

#include <memory>
#include <vector>

#include "tiling/vector/geometry/Shape.h"

// As in geos_c.h, which only the sources of this room include.
struct GEOSGeom_t;

namespace orvo::geos {

/// Owns one geometry of the library. It stays on the thread that made it.
struct Destroy {
    void operator()(GEOSGeom_t* geometry) const;
};
using Handle = std::unique_ptr<GEOSGeom_t, Destroy>;

// Each of these fails with number 440 and the library's own text.

Handle ToGeos(const Shape& shape);
/// The rectangle as a polygon, or as a line or a point where it has no area.
Handle ToGeos(const Bounds& bounds);
/// The parts of `geometry` that are of the kind of `like`, whatever collection they stand in.
Shape FromGeos(const GEOSGeom_t& geometry, const Shape& like);

bool IsValid(const GEOSGeom_t& geometry);
/// A valid geometry with the same vertices; areas by the even-odd rule.
Handle MadeValid(const GEOSGeom_t& geometry);
Handle Intersection(const GEOSGeom_t& a, const GEOSGeom_t& b);

bool Within(const GEOSGeom_t& a, const GEOSGeom_t& b);
bool Crosses(const GEOSGeom_t& a, const GEOSGeom_t& b);
bool Overlaps(const GEOSGeom_t& a, const GEOSGeom_t& b);

}  // namespace orvo::geos
