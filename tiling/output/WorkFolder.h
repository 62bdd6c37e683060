// Where a tile's files grow before they get their names.
#pragma once

#include <string>
#include <vector>

namespace orvo::tiling {

/// A hidden folder of its own inside OUTDIR; goes with this object, and all that is in it.
class WorkFolder {
  public:
    /// Fails with RunError.
    explicit WorkFolder(const std::string& outdir);
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const std::string& Path() const { return path_; }
    /// Moves all files to a folder on the same file system, the named one last. Fails with RunError where one
    /// of them is there already, and then moves none. @return the others' names
    /// @param others false where there are none
    std::vector<std::string> Publish(const std::string& name, const std::string& folder, bool others) const;
    /// Removes what is in it.
    void Clear() const;
    /// A text in which this folder's path does not show.
    std::string WithoutPath(std::string text) const;

  private:
    std::string path_;
};

}  // namespace orvo::tiling
