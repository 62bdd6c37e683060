// Free file names, and which of them are spoken for.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvo::utility {

/// A name is held by an empty hidden file beside it (".NAME.reserved"), which no two processes can create. It
/// is removed once the name is released; a process that is killed leaves it, and the name then stays out of
/// use.
class Reservations {
  public:
    Reservations() = default;
    ~Reservations();
    Reservations(const Reservations&) = delete;
    Reservations& operator=(const Reservations&) = delete;

    /// Reserves folder, separator, base name, "_" and a counter from 1, under which no file with any of the
    /// extensions exists. The counter of a folder and base name only goes forward: no name is looked at
    /// twice. Fails with 76 (no such folder), 75 (not writable), 61 (disk full) or 57.
    std::string Reserve(const void* owner, const std::string& folder, const std::string& baseName,
                        const std::vector<std::string>& extensions);

    /// The extension of a name that was reserved for exactly one.
    std::optional<std::string> OnlyExtension(const std::string& name) const;

    /// A file of that path, extension included, stands now.
    void Release(const std::string& file);
    void ReleaseAll(const void* owner);

  private:
    struct Held {
        const void* owner;
        std::string mark;  ///< the hidden file
        std::optional<std::string> onlyExtension;
    };
    struct Series {
        std::int64_t counter = 0;  ///< of the last name looked at
        std::string lastMark;      ///< may be gone
    };
    std::map<std::string, Series> series_;  ///< by what stands before the counter, as on the disk
    std::map<std::string, Held> held_;      ///< by name, as on the disk
};

}  // namespace orvo::utility
