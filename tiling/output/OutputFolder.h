// The folder that the tiles go to: made where it is missing, protected against overwriting, cleared on
// demand.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tiling/output/EarlierRun.h"
#include "tiling/output/FolderLock.h"

namespace orvo::tiling {

/// What a run does with an earlier one's files. A part keeps what it finds of its own, beside other parts at
/// work; a merge changes nothing.
enum class Earlier { Refuse, Remove, Resume, Part, Merge };

class OutputFolder {
  public:
    /// Takes the folder as it stands in the file system; a missing one is not made yet. Fails with UsageError
    /// where it cannot serve: a file in its place, a backslash in its name.
    explicit OutputFolder(const std::string& path);

    /// Refuses a folder that holds a run unless that is to be removed or resumed; then all of its files must
    /// be ours to remove, and none of `keep` (what the source is read from) among them. A run is resumed by
    /// the same job only. Nothing is changed yet.
    /// @param part of the job; none for the whole
    void CheckEarlier(Earlier earlier, const std::vector<std::string>& keep, const Json& job,
                      const PartNumber& part = {});
    /// Makes the folder, tries to write into it, removes what is to go of the earlier run, what it left where
    /// it was killed too, and writes the job. Until the end of this object nobody else works there; fails
    /// with UsageError where somebody does. Leaves no folder where it fails.
    /// @return the tiles that are there, with the files that go with them, where a run is resumed
    std::map<std::string, std::vector<std::string>> Prepare();
    /// Removes the job: nothing was written. Parts leave it to the others.
    void RemoveJob() noexcept;
    /// Removes what parts have left, for it stands in the index now.
    void RemoveRecords(const std::vector<std::string>& records) const;
    /// Removes the folders that Prepare has made, as far as they are empty.
    void RemoveIfUnused() noexcept;

    /// Absolute, without a trailing separator.
    const std::string& Path() const { return path_; }

  private:
    void Make();
    void TryToWrite() const;
    EarlierRun LookAtEarlier() const;
    void RequireNoSource(const std::string& name) const;
    std::map<std::string, std::vector<std::string>> TakeUp(const EarlierRun& run) const;
    void RemoveAll(const EarlierRun& run) const;
    void RemoveLeftovers(const EarlierRun& run) const;

    std::string path_;
    std::vector<std::filesystem::path> made_;  ///< outermost first
    Earlier earlier_ = Earlier::Refuse;
    PartNumber part_;
    std::vector<std::string> keep_;
    Json job_;
    void Lock();

    std::unique_ptr<FolderLock> lock_, partLock_;
};

}  // namespace orvo::tiling
