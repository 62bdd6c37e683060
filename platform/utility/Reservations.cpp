#include "platform/utility/Reservations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "platform/RuntimeError.h"
#include "support/SystemPath.h"

namespace orvo::utility {
namespace {

/// Folder and name with the kind of separator that the folder uses.
std::string Join(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder.back() == '\\' || folder.back() == '/') return folder + name;
    const bool backslash = folder.find('\\') != std::string::npos && folder.find('/') == std::string::npos;
    return folder + (backslash ? "\\" : "/") + name;
}

[[noreturn]] void Fail(int number, const std::string& folder) {
    const std::string about = (folder.empty() ? "the current folder" : folder) + " (" +
                              std::generic_category().message(number) + ")";
    switch (number) {
        case ENOENT:
        case ENOTDIR:
            throw RuntimeError(Fault::PathNotFound, about);
        case EACCES:
        case EPERM:
        case EROFS:
        case ENAMETOOLONG:
        case ELOOP:
            throw RuntimeError(Fault::PathFileAccess, about);
        case ENOSPC:
        case EDQUOT:
            throw RuntimeError(Fault::DiskFull, about);
        default:
            throw RuntimeError(Fault::DeviceIOError, about);
    }
}

/// False where another process, or an object of this one, holds the name. A second name for a mark that is
/// there
/// (`like`, may be empty) costs a tenth of a new file; where the disk has no such names, a new file serves.
bool CreateMark(const std::string& mark, const std::string& like, const std::string& folder) {
    if (!like.empty()) {
        if (::link(like.c_str(), mark.c_str()) == 0) return true;
        if (errno == EEXIST) return false;
    }
    const int file = ::open(mark.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0 && errno == EEXIST) return false;
    if (file < 0) Fail(errno, folder);
    ::close(file);
    return true;
}

bool Exists(const std::string& file, const std::string& folder) {
    struct stat found {};
    if (::lstat(file.c_str(), &found) == 0) return true;
    if (errno != ENOENT) Fail(errno, folder);
    return false;
}

/// Removes the mark unless it is kept.
class MarkGuard {
  public:
    explicit MarkGuard(const std::string& mark) : mark_(mark) {}
    ~MarkGuard() {
        if (!kept_) ::unlink(mark_.c_str());
    }
    MarkGuard(const MarkGuard&) = delete;
    MarkGuard& operator=(const MarkGuard&) = delete;
    void Keep() { kept_ = true; }

  private:
    const std::string& mark_;
    bool kept_ = false;
};

}  // namespace

Reservations::~Reservations() {
    for (const auto& [name, held] : held_) ::unlink(held.mark.c_str());
}

std::string Reservations::Reserve(const void* owner, const std::string& folder, const std::string& baseName,
                                  const std::vector<std::string>& extensions) {
    const std::string stem = Join(folder, baseName) + "_";
    const std::string diskStem = SystemPath(stem);
    const std::size_t nameAt = diskStem.rfind('/') + 1;  // 0 where there is no folder
    auto& [counter, lastMark] = series_[diskStem];
    for (;; ++counter) {
        const std::string number = std::to_string(counter + 1);
        const std::string name = std::string(diskStem).append(number);
        const std::string mark = std::string(name).insert(nameAt, 1, '.').append(".reserved");
        if (!CreateMark(mark, lastMark, folder)) continue;
        MarkGuard guard(mark);
        const bool taken = std::any_of(extensions.begin(), extensions.end(), [&](const auto& extension) {
            return Exists(extension.empty() ? name : std::string(name).append(".").append(extension), folder);
        });
        if (taken) continue;
        Held held{owner, mark, std::nullopt};
        if (extensions.size() == 1) held.onlyExtension = extensions.front();
        held_.insert_or_assign(name, std::move(held));
        lastMark = mark;
        guard.Keep();
        ++counter;
        return stem + number;
    }
}

std::optional<std::string> Reservations::OnlyExtension(const std::string& name) const {
    const auto found = held_.find(SystemPath(name));
    return found == held_.end() ? std::nullopt : found->second.onlyExtension;
}

void Reservations::Release(const std::string& file) {
    std::string name = SystemPath(file);
    const auto dot = name.rfind('.');
    if (dot != std::string::npos && name.find('/', dot) == std::string::npos) name.resize(dot);
    const auto found = held_.find(name);
    if (found == held_.end()) return;
    ::unlink(found->second.mark.c_str());
    held_.erase(found);
}

void Reservations::ReleaseAll(const void* owner) {
    std::erase_if(held_, [&](const auto& entry) {
        const bool own = entry.second.owner == owner;
        if (own) ::unlink(entry.second.mark.c_str());
        return own;
    });
}

}  // namespace orvo::utility
