// Areas whose border crosses itself.
#pragma once

#include <memory>
#include <string>

#include "tiling/vector/geometry/Shape.h"

namespace orvo::geos {

/// The same areas by the even-odd rule, with borders that meet in points only; no vertex has a height. While
/// this works, a crossing takes about 4 kB and 40 µs. Fails with number 440 where the border crosses itself
/// more than 100 000 times, where the work takes longer than 60 seconds, or where it is stopped (WorkLimit).
Shape Mended(const Shape& shape);

/// The mended form of a geometry, with its heights, shared among its copies and made once.
class Mending {
  public:
    /// Null where it could not be made.
    std::shared_ptr<const Shape> Of(const Shape& whole);
    /// Null where none was asked for yet.
    const std::shared_ptr<const Shape>& Made() const { return mended_; }
    /// Why a geometry could not be mended; empty where it could be, or need not.
    const std::string& Refusal() const { return refusal_; }
    void Refuse(const std::string& reason) { refusal_ = reason; }

  private:
    std::shared_ptr<const Shape> mended_;
    std::string refusal_;
};

}  // namespace orvo::geos
