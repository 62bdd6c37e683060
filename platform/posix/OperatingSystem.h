// Which system the process runs on.
#pragma once

#include <string_view>

#include "platform/System.h"

namespace orvo::posix {

/// The numbers at the start of a kernel's release, "6.1.0-18-amd64" for example: version 6.1, build 0.
OSVersion VersionOfRelease(std::string_view release);

/// Linux knows no variable TEMP: where it is not set, TMPDIR serves, else a folder of the user's own in /tmp
/// that nobody else can write to; it is made where it is missing.
class OperatingSystem final : public IOperatingSystem {
  public:
    OSVersion GetVersion() override;
    std::string TempFolder() override;
};

}  // namespace orvo::posix
