#include "platform/files/PartFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

namespace orvo::files {
namespace {

std::error_code LastError() {
    return {errno == EDQUOT ? ENOSPC : errno, std::generic_category()};  // a quota is a full disk
}

/// Unlike for every process that runs, and every file of this one.
std::string FreshName(const std::string& extension) {
    static std::atomic<unsigned> counter{0};
    return ".orvo-tile-" + std::to_string(::getpid()) + "-" + std::to_string(++counter) + extension;
}

}  // namespace

PartFile::PartFile(const std::filesystem::path& folder, const std::string& extension, std::error_code& failed,
                   Readers readers) {
    constexpr mode_t kOwner = S_IRUSR | S_IWUSR;
    constexpr mode_t kAll =
        kOwner | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;  // less what the user's mask takes
    int file = -1;
    std::filesystem::path name;
    do {  // a process that was killed, or another machine, may have left a name
        name = folder / FreshName(extension);
        file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                      readers == Readers::All ? kAll : kOwner);
        failed = file < 0 ? LastError() : std::error_code();
    } while (failed == std::errc::file_exists);
    if (file < 0) return;
    path_ = name;
    ::close(file);
}

std::error_code PartFile::Reserve(std::uintmax_t bytes) const {
    const int file = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0) return LastError();
    errno = ::posix_fallocate(file, 0, static_cast<off_t>(bytes));
    std::error_code failed = errno == 0 || errno == EOPNOTSUPP ? std::error_code() : LastError();
    ::close(file);
    return failed;
}

std::error_code PartFile::Write(std::string_view bytes) const {
    std::FILE* const file = std::fopen(path_.c_str(), "r+be");
    if (file == nullptr) return LastError();
    std::error_code failed;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size() || std::fflush(file) != 0 ||
        ::ftruncate(::fileno(file), static_cast<off_t>(bytes.size())) != 0)
        failed = LastError();
    if (std::fclose(file) != 0 && !failed) failed = LastError();
    return failed;
}

std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
    return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

/// Renames without replacing, where the file system can; by a second name otherwise.
std::error_code MoveNew(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
    if (errno == ENOTEMPTY) return std::make_error_code(std::errc::file_exists);
    if (errno != EINVAL && errno != ENOSYS) return LastError();
    if (::link(from.c_str(), to.c_str()) != 0 || ::unlink(from.c_str()) != 0) return LastError();
    return {};
}

}  // namespace orvo::files
