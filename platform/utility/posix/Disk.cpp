#include "platform/utility/Disk.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace orvo::utility {
namespace {

std::error_code LastError() {
    return {errno == EDQUOT ? ENOSPC : errno, std::generic_category()};  // a quota is a full disk
}

}  // namespace

/// A second name costs a tenth of a new file; where the disk has no such names, a new file serves.
std::error_code CreateMark(const std::string& mark, const std::string& like) {
    if (!like.empty()) {
        if (::link(like.c_str(), mark.c_str()) == 0) return {};
        if (errno == EEXIST) return LastError();
    }
    const int file = ::open(mark.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) return LastError();
    ::close(file);
    return {};
}

std::error_code CreateWorkFolder(const std::filesystem::path& parent, std::filesystem::path& folder) {
    std::string name = (parent / ".convert-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) return LastError();
    folder = name;
    return {};
}

std::string SignalName(int signal) {
    return ::strsignal(signal);
}

}  // namespace orvo::utility
