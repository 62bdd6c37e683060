#include "platform/posix/TextFiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/RuntimeError.h"
#include "platform/files/PartFile.h"
#include "support/SystemPath.h"

namespace orvo::posix {
namespace {

constexpr mode_t kOwnersAlone = S_IRUSR | S_IWUSR;

Fault FaultOf(int reason) {
    switch (reason) {
        case ENOENT:
        case ENOTDIR:
            return Fault::PathNotFound;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
        case ELOOP:
            return Fault::PermissionDenied;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return Fault::DiskFull;
        default:
            return Fault::DeviceIOError;
    }
}

[[noreturn]] void Fail(const std::string& path, int reason) {
    throw RuntimeError(FaultOf(reason), path + " (" + std::generic_category().message(reason) + ")");
}

/// An open file. Nothing is opened through a link: a folder for temporary files may be everybody's.
class File {
  public:
    File(std::string path, int flags)
        : path_(std::move(path)),
          descriptor_(::open(path_.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, kOwnersAlone)) {
        if (descriptor_ < 0) Fail(path_, errno);
    }
    ~File() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Waits for others that write, up to 5 s: one that was stopped must not hold up everybody's reports.
    /// Released by closing. A file system without locks goes without.
    void Lock() const {
        for (int i = 0; i < 250; ++i) {
            if (::flock(descriptor_, LOCK_EX | LOCK_NB) == 0) return;
            if (errno != EWOULDBLOCK && errno != EINTR) return;
            ::usleep(20000);
        }
    }
    off_t End() const { return ::lseek(descriptor_, 0, SEEK_END); }
    void Cut(off_t end) const {
        if (end >= 0 && ::ftruncate(descriptor_, end) != 0) return;
    }
    /// The reason where not all of it could be written.
    int Write(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t written = ::write(descriptor_, text.data(), text.size());
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) return errno;
            text.remove_prefix(static_cast<std::size_t>(written));
        }
        return 0;
    }
    /// The reason where that failed; some file systems write only now.
    int Close() { return ::close(std::exchange(descriptor_, -1)) == 0 ? 0 : errno; }

  private:
    std::string path_;
    int descriptor_;
};

}  // namespace

bool TextFiles::Exists(const std::string& path) {
    struct stat found {};
    return ::stat(SystemPath(path).c_str(), &found) == 0 && !S_ISDIR(found.st_mode);
}

void TextFiles::Append(const std::string& path, const std::string& text) {
    const std::string name = SystemPath(path);
    File file(name, O_WRONLY | O_APPEND | O_CREAT);
    file.Lock();
    const off_t end = file.End();
    if (const int reason = file.Write(text)) {
        file.Cut(end);
        Fail(name, reason);
    }
    if (const int reason = file.Close()) Fail(name, reason);
}

void TextFiles::Replace(const std::string& path, const std::string& text) {
    const std::string name = SystemPath(path);
    // Renaming would replace a file that may not be written.
    if (::access(name.c_str(), F_OK) == 0 && ::access(name.c_str(), W_OK) != 0) Fail(name, errno);
    if (const std::error_code failed = files::WriteWhole(name, text, files::Readers::OwnerOnly))
        Fail(name, failed.value());
}

}  // namespace orvo::posix
