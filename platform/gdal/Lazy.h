// Values that cost much, such as a pass over all cells of a layer, made when they are needed.
#pragma once

#include <optional>

#include "platform/RuntimeError.h"

namespace orvo::gdal {

/// A value that is made on first use. A failure to make it is final: it is thrown again, not tried again.
template <class Value>
class Lazy {
  public:
    template <class Make>
    const Value& Get(Make&& make) {
        if (failure_) throw RuntimeError(*failure_);
        if (value_) return *value_;
        try {
            return value_.emplace(make());
        } catch (const RuntimeError& failure) {
            failure_ = failure;
            throw;
        }
    }

  private:
    std::optional<Value> value_;
    std::optional<RuntimeError> failure_;
};

}  // namespace orvo::gdal
