// Module GUIApi: small numeric helpers.
#pragma once

#include <vector>

#include "support/Variant.h"

namespace orvo {

/// The smallest of its arguments, which keeps its own type; the double 1E+230 where none is smaller.
Variant Min(const std::vector<Variant>& x);

}  // namespace orvo
