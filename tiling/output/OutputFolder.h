// The folder that the tiles go to: made where it is missing, protected against overwriting, cleared on
// demand.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace orvo::tiling {

class OutputFolder {
  public:
    /// Takes the folder as it stands in the file system; a missing one is not made yet. Fails with UsageError
    /// where it cannot serve: a file in its place, a backslash in its name.
    explicit OutputFolder(const std::string& path);

    /// Refuses a folder with an earlier index unless `overwrite`; then all of the earlier runs' files must be
    /// ours to remove, and `keep` (the source) must not be among them. Nothing is changed yet.
    void CheckEarlier(bool overwrite, const std::vector<std::string>& keep);
    /// Makes the folder, tries to write into it, and removes the earlier runs' files.
    void Prepare();
    /// Removes the folders that Prepare has made, as far as they are empty.
    void RemoveIfUnused() noexcept;

    /// Absolute, without a trailing separator.
    const std::string& Path() const { return path_; }

  private:
    void Make();
    void TryToWrite() const;
    void RemoveEarlier();

    std::string path_;
    std::vector<std::filesystem::path> made_;  ///< outermost first
    std::vector<std::string> earlier_;         ///< file names, the indexes last
};

}  // namespace orvo::tiling
