// The quick half of the question whether areas are valid.
#pragma once

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// True for areas without holes whose borders clearly neither cross nor touch themselves or each other, side
/// by side: those are valid. False says nothing; the library then has to answer.
bool IsPlainlyValid(const Shape& areas);

}  // namespace orvo::geos
