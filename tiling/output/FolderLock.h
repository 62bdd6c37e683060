// Who works in an output folder.
#pragma once

#include <string>

namespace orvo::tiling {

/// A lock on a folder, held by one run, or by several together. It ends with its process at the latest. File
/// systems that know no such locks give it to everybody.
class FolderLock {
  public:
    /// Takes no lock yet. Fails with RunError where the folder cannot be opened.
    explicit FolderLock(const std::string& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    /// Takes the lock; false where somebody else has it.
    bool TryAlone() const;
    /// Takes it together with others that do so; false where somebody has it alone.
    bool TryTogether() const;

  private:
    int folder_;
};

}  // namespace orvo::tiling
