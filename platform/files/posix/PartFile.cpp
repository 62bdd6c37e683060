#include "platform/files/PartFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace orvo::files {
namespace {

std::error_code LastError() {
    return {errno == EDQUOT ? ENOSPC : errno, std::generic_category()};  // a quota is a full disk
}

/// What new files of this process may be used for.
mode_t UsualMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

}  // namespace

PartFile::PartFile(const std::filesystem::path& folder, const std::string& extension, std::error_code& failed,
                   Readers readers) {
    std::string name = (folder / ".orvo-tile-XXXXXX").string() + extension;
    const int file = ::mkostemps(name.data(), static_cast<int>(extension.size()), O_CLOEXEC);
    failed = file < 0 ? LastError() : std::error_code();
    if (file < 0) return;
    path_ = name;
    if (readers == Readers::All) ::fchmod(file, UsualMode());
    ::close(file);
}

std::error_code PartFile::Write(std::string_view bytes) const {
    std::FILE* const file = std::fopen(path_.c_str(), "wbe");
    if (file == nullptr) return LastError();
    std::error_code failed;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size() || std::fflush(file) != 0)
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
