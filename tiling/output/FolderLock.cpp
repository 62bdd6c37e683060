#include "tiling/output/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tiling/Errors.h"

namespace orvo::tiling {

FolderLock::FolderLock(const std::string& folder)
    : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (folder_ < 0) throw RunError("cannot open the folder \"" + folder + "\": " + std::strerror(errno));
}

FolderLock::~FolderLock() {
    close(folder_);
}

bool FolderLock::TryAlone() const {
    return flock(folder_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool FolderLock::TryTogether() const {
    return flock(folder_, LOCK_SH | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

}  // namespace orvo::tiling
