#include "platform/utility/Reservations.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/RuntimeError.h"
#include "platform/utility/Disk.h"
#include "support/SystemPath.h"

namespace orvo::utility {
namespace {

/// Folder and name with the kind of separator that the folder uses.
std::string Join(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder.back() == '\\' || folder.back() == '/') return folder + name;
    const bool backslash = folder.find('\\') != std::string::npos && folder.find('/') == std::string::npos;
    return folder + (backslash ? "\\" : "/") + name;
}

[[noreturn]] void Fail(const std::error_code& reason, const std::string& folder) {
    const std::string about =
        (folder.empty() ? "the current folder" : folder) + " (" + reason.message() + ")";
    if (reason == std::errc::no_such_file_or_directory || reason == std::errc::not_a_directory)
        throw RuntimeError(Fault::PathNotFound, about);
    for (const std::errc refused :
         {std::errc::permission_denied, std::errc::operation_not_permitted, std::errc::read_only_file_system,
          std::errc::filename_too_long, std::errc::too_many_symbolic_link_levels}) {
        if (reason == refused) throw RuntimeError(Fault::PathFileAccess, about);
    }
    const bool full = reason == std::errc::no_space_on_device;
    throw RuntimeError(full ? Fault::DiskFull : Fault::DeviceIOError, about);
}

bool Exists(const std::string& file, const std::string& folder) {
    std::error_code failed;
    const auto found = std::filesystem::symlink_status(DiskPath(file), failed);
    if (found.type() == std::filesystem::file_type::none) Fail(failed, folder);
    return found.type() != std::filesystem::file_type::not_found;
}

void Remove(const std::string& mark) {
    std::error_code ignored;
    std::filesystem::remove(DiskPath(mark), ignored);
}

/// Removes the mark unless it is kept.
class MarkGuard {
  public:
    explicit MarkGuard(const std::string& mark) : mark_(mark) {}
    ~MarkGuard() {
        if (!kept_) Remove(mark_);
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
    for (const auto& [name, held] : held_) Remove(held.mark);
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
        const std::error_code failed = CreateMark(mark, lastMark);
        if (failed == std::errc::file_exists) continue;
        if (failed) Fail(failed, folder);
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
    Remove(found->second.mark);
    held_.erase(found);
}

void Reservations::ReleaseAll(const void* owner) {
    std::erase_if(held_, [&](const auto& entry) {
        const bool own = entry.second.owner == owner;
        if (own) Remove(entry.second.mark);
        return own;
    });
}

}  // namespace orvo::utility
