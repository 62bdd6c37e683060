// The operating system's services.
#pragma once

#include "platform/System.h"

namespace orvo::windows {

/// Keys and names go to the system in its ANSI code page; texts come back as UTF-8.
class Registry final : public IRegistry {
  public:
    Long RegOpenKey(Long hKey, const std::string& path, Long& handle) override;
    Long RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) override;
    Long RegCloseKey(Long handle) override;
};

/// Seconds since 1601 in UTC; local times follow the system's time zone.
class Clock final : public IClock {
  public:
    std::int64_t Seconds() override;
    LocalTime Local(std::int64_t seconds) override;
};

class OperatingSystem final : public IOperatingSystem {
  public:
    OSVersion GetVersion() override;
    std::string TempFolder() override;
};

/// UTF-8 without a byte-order mark, line ends as they are given. Appends under a lock on the file, and takes
/// back what a full disk cut short. A file that replaces another is written beside it first.
class TextFiles final : public ITextFiles {
  public:
    bool Exists(const std::string& path) override;
    void Append(const std::string& path, const std::string& text) override;
    void Replace(const std::string& path, const std::string& text) override;
};

}  // namespace orvo::windows
