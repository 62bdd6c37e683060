// The runtime's arithmetic: whole numbers detect overflow, doubles detect invalid results.
#pragma once

#include "platform/Types.h"

namespace orvo {

/// 32-bit arithmetic; a result outside the range fails with "Overflow" (6).
Long Add(Long a, Long b);
Long Subtract(Long a, Long b);
Long Multiply(Long a, Long b);
/// The remainder with the sign of the dividend; divisor 0 fails with "Division by zero" (11).
Long Mod(Long a, Long b);

/// The quotient of two doubles; x/0 fails with "Division by zero" (11), 0/0 and results that are not finite
/// with "Overflow" (6).
double Divide(double a, double b);

/// Passes a double on that is finite, fails with "Overflow" (6) on any other.
double Finite(double value);

/// The nearest whole number, ties to the even one: 2.5 → 2, 3.5 → 4.
double RoundHalfEven(double value);

/// RoundHalfEven as a Long; outside its range "Overflow" (6).
Long ToLong(double value);

/// ToLong of value + 0.5: a fraction goes up, a whole number stays where it is even and gains 1 where it is
/// odd.
Long RoundUp(double value);

/// How many tiles of `tileSize` cover `size`: rounded up for a remainder above 0, half to even otherwise.
Long TilesToCover(Long size, Long tileSize);

/// 16-bit addition with "Overflow" (6).
Integer AddInteger(Integer a, Integer b);

}  // namespace orvo
