// The number types that the public interfaces use.
#pragma once

#include <cstdint>

namespace orvo {

using Long = std::int32_t;     ///< 32-bit signed whole number: sizes, counts, offsets
using Integer = std::int16_t;  ///< 16-bit signed whole number: quality, string ids, choices

}  // namespace orvo
