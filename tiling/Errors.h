// How a command ends.
#pragma once

#include <stdexcept>

namespace orvo::host {

enum ExitCode : int { kExitDone = 0, kExitIncomplete = 1, kExitUsage = 2, kExitInterrupted = 130 };

/// What was asked for cannot be done as it was asked for. The text names the option or file and the remedy.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What was asked for failed.
class RunError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace orvo::host
