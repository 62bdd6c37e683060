// How a request to the engine fails as a whole.
#pragma once

#include <stdexcept>

namespace orvo::tiling {

/// What was asked for cannot be done as it was asked for. The text names the option or file and the remedy.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What was asked for failed.
class RunError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace orvo::tiling
