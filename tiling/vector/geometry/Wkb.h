// Well-known binary, the form in which geometries come in and go out, read and written by GEOS.
#pragma once

#include <span>
#include <vector>

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// Reads ISO and extended WKB of either byte order; measures and reference-system numbers are passed over.
///
/// Collections, curves and surfaces give a shape of type `Other` without coordinates, unread: the caller
/// keeps the bytes. What GEOS cannot read, and coordinates that are not finite or beyond 1e100, fail with
/// number 440 and say what was wrong.
Shape ReadWkb(std::span<const unsigned char> bytes);

/// ISO WKB, little-endian. Not for shapes of type `Other`.
std::vector<unsigned char> WriteWkb(const Shape& shape);

}  // namespace orvo::geos
