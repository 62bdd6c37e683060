// Putting the finished files of a run under names that nobody else has.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "platform/files/PartFile.h"

namespace orvo::tiling {

/// A file under a hidden name of its own in a folder, until it is published. Removed with this object.
class DraftFile {
  public:
    /// Takes the hidden name. Fails with RunError. @param extension with its dot
    DraftFile(const std::string& folder, const std::string& extension);

    std::string Path() const { return part_.Path().string(); }
    /// Takes room on the disk for the text. Fails with RunError.
    void Reserve(std::uintmax_t bytes);
    /// Writes the whole text; write, flush and close are checked. Fails with RunError.
    void Write(const std::string& text);
    /// Gives the file its name in the same folder unless that is taken; false where it is. Fails with
    /// RunError.
    bool Publish(const std::string& name);
    /// Takes the name back.
    void Withdraw();
    bool IsPublished() const { return !published_.empty(); }

  private:
    std::error_code failed_;
    files::PartFile part_;
    std::string published_;  ///< the full path it has now; empty while hidden
};

/// The files that a run adds to its tiles: the index, and others. They get their usual names together, or all
/// the same number where one of those is taken.
class DraftSet {
  public:
    /// Takes room for the index, in bytes: it must be written even where the tiles have filled the disk.
    /// Fails with RunError.
    DraftSet(std::string folder, std::uintmax_t indexRoom);

    /// Adds a finished file of the same folder, which will be called by the stem.
    void Add(const std::string& stem, const std::string& extension, std::unique_ptr<DraftFile> file);
    /// Writes a file and adds it. Fails with RunError, and then adds none.
    void Add(const std::string& stem, const std::string& extension, const std::string& text);
    /// Publishes the index, tiles.geojson, and then the others.
    /// @param text of the index, made from the names that the others get
    /// @return the index's full path. Fails with RunError, and then publishes none.
    std::string Publish(const std::function<std::string(const std::vector<std::string>& names)>& text);
    /// Why files beside the index could not get their names.
    const std::vector<std::string>& Errors() const { return errors_; }
    /// The full path of a published file; empty where none was added under that stem.
    std::string PathOf(const std::string& stem) const;

  private:
    struct Member {
        std::string stem, extension, name;
        std::unique_ptr<DraftFile> file;
    };
    bool PublishMembers();
    void Withdraw();

    std::string folder_;
    DraftFile index_;
    std::vector<Member> members_;
    std::vector<std::string> errors_;
};

/// Gives a file or folder another name on the same file system unless that is taken; false where it is. Fails
/// with RunError.
bool MoveNew(const std::string& from, const std::string& to);

/// name.ext for 1, name_2.ext for 2 and so on.
std::string NumberedName(const std::string& stem, int number, const std::string& extension);

}  // namespace orvo::tiling
