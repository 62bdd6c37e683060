// Numbers as people read them.
#pragma once

#include <sstream>
#include <string>

#include "tiling/output/PlacedTile.h"

namespace orvo::tiling {

/// 15 significant digits.
inline std::string Digits(double value) {
    std::ostringstream text;
    text.precision(15);
    text << value;
    return text.str();
}

inline std::string Text(const Rectangle& r) {
    return Digits(r.xMin) + " " + Digits(r.yMin) + " " + Digits(r.xMax) + " " + Digits(r.yMax);
}

}  // namespace orvo::tiling
