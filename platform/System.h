// The operating system's services: registry, clock, version, text files.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Types.h"

namespace orvo {

/// Read access to a registry. Results are the system's codes, 0 for success; texts are UTF-8.
class IRegistry {
  public:
    static constexpr Long kCurrentUser = static_cast<Long>(0x80000001U);
    static constexpr Long kTypeString = 1;
    static constexpr Long kTypeBinary = 3;

    virtual ~IRegistry() = default;
    /// Opens a sub-key; on failure `handle` stays as it is.
    virtual Long RegOpenKey(Long hKey, const std::string& path, Long& handle) = 0;
    /// Reads a value. Without `data` only its type and size in bytes are reported; with it, up to `size`
    /// bytes are stored and `size` becomes the number stored.
    virtual Long RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) = 0;
    virtual Long RegCloseKey(Long handle) = 0;
};

/// A local date and time.
struct LocalTime {
    int year = 0;
    int month = 0;  ///< 1 to 12
    int day = 0;    ///< 1 to 31
    int hour = 0;   ///< 0 to 23
    int minute = 0;
    int second = 0;
};

class IClock {
  public:
    virtual ~IClock() = default;
    virtual std::int64_t Seconds() = 0;  ///< since an epoch of the clock's own
    virtual LocalTime Local(std::int64_t seconds) = 0;
};

struct OSVersion {
    Long major = 0;
    Long minor = 0;
    Long build = 0;
    Long platformId = 0;  ///< 0, 1 and 2 are the Windows families; 4 is Linux
    std::string servicePack;
};

class IOperatingSystem {
  public:
    virtual ~IOperatingSystem() = default;
    virtual OSVersion GetVersion() = 0;
    /// The user's folder for temporary files, as the variable TEMP names it; where that names none, what the
    /// system offers instead, or nothing.
    virtual std::string TempFolder() = 0;
};

/// Plain text files, opened, written and closed within one call. Takes "\" and "/" for separators alike; a
/// failing call fails with the number of its reason (70 refused, 76 no such folder, 61 disk full, 57 else).
class ITextFiles {
  public:
    virtual ~ITextFiles() = default;
    virtual bool Exists(const std::string& path) = 0;
    /// Adds bytes to the end of a file, made where it is missing, without reading it. Two processes that
    /// append to one file do not mix their texts.
    virtual void Append(const std::string& path, const std::string& text) = 0;
    /// Replaces the file's content.
    virtual void Replace(const std::string& path, const std::string& text) = 0;
};

}  // namespace orvo
