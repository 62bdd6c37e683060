// Writing files so that a name never holds half a file; one source file per system.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace orvo::files {

enum class Readers { All, OwnerOnly };

/// A file that grows in the folder of its target under a hidden name, ".orvo-tile-", something that no other
/// thread of any process has, and the target's extension. Removed with this object unless it was moved.
class PartFile {
  public:
    /// Makes the empty file. @param extension with its dot; may be empty
    /// @param failed why that was not possible; the other members must not be used then
    PartFile(const std::filesystem::path& folder, const std::string& extension, std::error_code& failed,
             Readers readers = Readers::All);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    /// Takes room on the disk for what will be written, where the file system can promise it.
    std::error_code Reserve(std::uintmax_t bytes) const;
    /// Writes the whole content, first into the room it has; write, flush and close are checked.
    std::error_code Write(std::string_view bytes) const;
    /// Gives the file another name on the same disk, in place of a file that is there.
    std::error_code MoveTo(const std::filesystem::path& target);
    /// The same; std::errc::file_exists where the name is taken.
    std::error_code MoveToNew(const std::filesystem::path& target);
    /// Gives it its hidden name again.
    std::error_code MoveBack(const std::filesystem::path& target);

  private:
    std::filesystem::path path_;
    bool moved_ = false;
};

/// Writes bytes into a part file beside the target and moves it there. On failure nothing is left.
std::error_code WriteWhole(const std::filesystem::path& target, std::string_view bytes,
                           Readers readers = Readers::All);

/// Gives a file another name on the same disk, in place of a file that is there.
std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to);

/// Gives a file or folder another name on the same disk; std::errc::file_exists where that is taken.
std::error_code MoveNew(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace orvo::files
