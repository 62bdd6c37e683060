// Who works in an output folder.
#pragma once

#include <string>

namespace orvo::tiling {

/// A lock on a folder, held by as many runs as write into it, or by one alone. It ends with its process at
/// the latest. File systems that know no such locks give it to everybody.
class FolderLock {
  public:
    /// Takes no lock yet. Fails with RunError where the folder cannot be opened.
    explicit FolderLock(const std::string& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    /// Takes the lock alone; false where others hold it.
    bool TryAlone() const;
    /// Takes the lock beside others, also after having it alone; waits for one who has it alone.
    void Share() const;

  private:
    int folder_;
};

}  // namespace orvo::tiling
