// Which system the process runs on.
#pragma once

#include <string_view>

#include "platform/System.h"

namespace orvo::posix {

/// The numbers at the start of a kernel's release, "6.1.0-18-amd64" for example: version 6.1, build 0.
OSVersion VersionOfRelease(std::string_view release);

/// The folder for this user's temporary files in a folder that is everybody's, made where it is missing.
/// Fails where it cannot be made (76), or belongs to somebody else, is a link, or others may write to it
/// (70).
std::string FolderOfUser(const std::string& shared);

/// Linux knows no variable TEMP: where it is not set, TMPDIR serves, else a folder of the user's own in /tmp
/// that nobody else can write to; it is made where it is missing.
class OperatingSystem final : public IOperatingSystem {
  public:
    OSVersion GetVersion() override;
    std::string TempFolder() override;
};

}  // namespace orvo::posix
