// Where a run keeps what is not finished, and what it must remember where it is killed.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tiling/Parts.h"

namespace orvo::tiling {

/// "part-3-of-8.json", what a part leaves when it is done.
std::string PartRecordName(const PartNumber& part);
/// The hidden folder of a run, or of a part.
std::string WorkFolderName(const PartNumber& part = {});
/// Whether a name is one of those, of any part.
bool IsWorkFolderName(const std::string& name);
/// The part whose record a name is.
std::optional<PartNumber> PartOfRecord(const std::string& name);

/// A hidden folder inside OUTDIR: files in the making, and a journal of the names that tiles were given. Goes
/// with this object, and all that is in it.
class WorkFolder {
  public:
    /// A tile's name and those of the files that go with it.
    using Entry = std::vector<std::string>;

    /// Fails with RunError.
    explicit WorkFolder(const std::string& outdir, const PartNumber& part = {});
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    /// For files in the making.
    const std::string& Path() const { return path_; }
    /// The folder stays behind with its journal, for what is in OUTDIR stands nowhere else.
    void Keep() { kept_ = true; }
    /// That was asked for, or files could not be moved back.
    bool IsKept() const { return kept_; }

    /// Moves files to OUTDIR, the first one last. Fails with RunError where one of the names is taken, and
    /// then moves none.
    /// @param from full paths on the same file system @param names relative to OUTDIR; folders are made
    void Publish(const std::vector<std::string>& from, const Entry& names);
    /// The same for all files in the making. @param others false where there are none but the named one
    /// @return the others' names
    std::vector<std::string> PublishAll(const std::string& name, bool others);
    /// Removes the files in the making.
    void Clear() const;
    /// A text in which this folder's path does not show.
    std::string WithoutPath(std::string text) const;

    /// The entries of a journal that a killed run has left; none where there is none.
    /// @param name of its work folder
    static std::vector<Entry> Noted(const std::string& outdir, const std::string& name);
    /// Leaves a journal with these entries, in place of one that is there. Fails with RunError.
    static void Renew(const std::string& outdir, const PartNumber& part,
                      const std::map<std::string, std::vector<std::string>>& tiles);

  private:
    void Note(const Entry& names) const;

    std::string outdir_, own_, path_;  ///< own: the whole folder, path: the files in the making
    int journal_ = -1;
    bool kept_ = false;
};

}  // namespace orvo::tiling
