// The folder that the tiles go to: made where it is missing, protected against overwriting, cleared on
// demand.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tiling/output/FolderLock.h"

namespace orvo::tiling {

class OutputFolder {
  public:
    /// Takes the folder as it stands in the file system; a missing one is not made yet. Fails with UsageError
    /// where it cannot serve: a file in its place, a backslash in its name.
    explicit OutputFolder(const std::string& path);

    /// Refuses a folder with an earlier index unless `overwrite`; then all of the earlier runs' files must be
    /// ours to remove, and none of `keep` (what the source is read from) among them. Nothing is changed yet.
    void CheckEarlier(bool overwrite, const std::vector<std::string>& keep);
    /// Makes the folder, tries to write into it, and removes the earlier runs' files, those that killed ones
    /// have left too. Until the end of this object nobody else removes files there; fails with UsageError
    /// where another run would lose its own. Leaves no folder where it fails.
    void Prepare();
    /// Removes the folders that Prepare has made, as far as they are empty.
    void RemoveIfUnused() noexcept;

    /// Absolute, without a trailing separator.
    const std::string& Path() const { return path_; }

  private:
    void Make();
    void TryToWrite() const;
    std::vector<std::string> EarlierFiles() const;
    void RequireNoSource(const std::string& name) const;
    void RemoveEarlier();

    std::string path_;
    std::vector<std::filesystem::path> made_;  ///< outermost first
    bool overwrite_ = false;
    std::vector<std::string> keep_;
    std::unique_ptr<FolderLock> lock_;
};

}  // namespace orvo::tiling
