// How two axis-parallel shapes lie to each other.
#pragma once

#include <array>

#include "platform/fake/Vector.h"

namespace orvo::fake {

/// The nine-intersection matrix: for interior, boundary and exterior of `a` (rows) and of `b` (columns), the
/// dimension of their common part, −1 for none. The two exteriors are not compared.
struct Matrix {
    std::array<std::array<int, 3>, 3> common;
    int dimensionA;
    int dimensionB;

    bool Within() const;
    bool Crosses() const;
    bool Overlaps() const;
};

Matrix Relate(const Shape& a, const Shape& b);

/// A box, or the line or point that a box without area is.
Shape ShapeOfBox(const Box& box);
/// Cuts a shape to a box. Parts keep their dimension; what only touches the box goes, except points.
Shape Cut(const Shape& shape, const Box& box);

}  // namespace orvo::fake
