// Which system the process runs on.
#pragma once

#include <string_view>

#include "platform/System.h"

namespace orvo::posix {

/// The numbers at the start of a kernel's release, "6.1.0-18-amd64" for example: version 6.1, build 0.
OSVersion VersionOfRelease(std::string_view release);

class OperatingSystem final : public IOperatingSystem {
  public:
    OSVersion GetVersion() override;
};

}  // namespace orvo::posix
