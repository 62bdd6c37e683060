// A value of any of the runtime's simple types, and how two of them compare.
#pragma once

#include <string>
#include <variant>

#include "platform/Types.h"

namespace orvo {

struct Null {};  ///< no valid data
struct Date {    ///< days since 30 December 1899, with the time of day as fraction
    double days = 0;
};

/// std::monostate stands for Empty, a Variant that was never assigned.
using Variant = std::variant<std::monostate, Null, bool, Integer, Long, float, double, Date, std::string>;

/// The runtime's a < b for Variants: numbers by value (True is −1, Empty is 0), texts byte by byte (Empty is
/// ""), any number before any text, and nothing before or after Null.
bool IsLess(const Variant& a, const Variant& b);

/// The text of a Variant that holds one; Empty is "". Any other content fails with "Type mismatch" (13).
std::string TextOf(const Variant& value);

}  // namespace orvo
