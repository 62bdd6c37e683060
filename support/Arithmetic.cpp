#include "support/Arithmetic.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/RuntimeError.h"

namespace orvo {
namespace {

template <class Whole>
Whole Checked(std::int64_t value) {
    if (value < std::numeric_limits<Whole>::min() || value > std::numeric_limits<Whole>::max()) {
        throw RuntimeError(Fault::Overflow);
    }
    return static_cast<Whole>(value);
}

}  // namespace

Long Add(Long a, Long b) {
    return Checked<Long>(std::int64_t{a} + b);
}
Long Subtract(Long a, Long b) {
    return Checked<Long>(std::int64_t{a} - b);
}
Long Multiply(Long a, Long b) {
    return Checked<Long>(std::int64_t{a} * b);
}

Long Mod(Long a, Long b) {
    if (b == 0) throw RuntimeError(Fault::DivisionByZero);
    return static_cast<Long>(std::int64_t{a} % b);
}

double Divide(double a, double b) {
    if (b == 0 && a != 0 && !std::isnan(a)) throw RuntimeError(Fault::DivisionByZero);
    return Finite(b == 0 ? std::numeric_limits<double>::quiet_NaN() : a / b);
}

double Finite(double value) {
    if (!std::isfinite(value)) throw RuntimeError(Fault::Overflow);
    return value;
}

double RoundHalfEven(double value) {
    const double below = std::floor(value);
    const double rest = value - below;
    if (rest > 0.5 || (rest == 0.5 && std::fmod(below, 2) != 0)) return below + 1;
    return below;
}

Long ToLong(double value) {
    const double rounded = RoundHalfEven(Finite(value));
    if (rounded < std::numeric_limits<Long>::min() || rounded > std::numeric_limits<Long>::max()) {
        throw RuntimeError(Fault::Overflow);
    }
    return static_cast<Long>(rounded);
}

Long RoundUp(double value) {
    return ToLong(value + 0.5);
}

Long TilesToCover(Long size, Long tileSize) {
    const double ratio = Divide(size, tileSize);
    return Mod(size, tileSize) > 0 ? RoundUp(ratio) : ToLong(ratio);
}

Integer AddInteger(Integer a, Integer b) {
    return Checked<Integer>(std::int64_t{a} + b);
}

}  // namespace orvo
