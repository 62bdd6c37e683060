#include "platform/posix/FileSystem.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <vector>

#include "platform/RuntimeError.h"
#include "support/SystemPath.h"

namespace orvo::posix {
namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// Length of the root with its separators: "/", "C:\"; 0 for a relative path.
std::size_t RootLength(std::string_view path) {
    const bool drive = path.size() > 2 && IsLetter(path[0]) && path[1] == ':' && IsSeparator(path[2]);
    std::size_t length = drive ? 2 : 0;
    while (length < path.size() && IsSeparator(path[length])) ++length;
    return length;
}

/// Where the last component lies in a path; begin == end for a root.
struct Component {
    std::size_t begin;
    std::size_t end;
};

Component LastComponent(std::string_view path) {
    const std::size_t root = RootLength(path);
    std::size_t end = path.size();
    while (end > root && IsSeparator(path[end - 1])) --end;
    std::size_t begin = end;
    while (begin > root && !IsSeparator(path[begin - 1])) --begin;
    return {begin, end};
}

bool Look(const std::string& path, struct stat& found) {
    return ::stat(SystemPath(path).c_str(), &found) == 0;
}

}  // namespace

bool FileSystem::FileExists(const std::string& path) {
    struct stat found {};
    return Look(path, found) && !S_ISDIR(found.st_mode);
}

bool FileSystem::FolderExists(const std::string& path) {
    struct stat found {};
    return Look(path, found) && S_ISDIR(found.st_mode);
}

std::string FileSystem::GetFileName(const std::string& path) {
    const auto [begin, end] = LastComponent(path);
    return path.substr(begin, end - begin);
}

std::string FileSystem::GetBaseName(const std::string& path) {
    const std::string name = GetFileName(path);
    return name.substr(0, name.rfind('.'));
}

std::string FileSystem::GetExtensionName(const std::string& path) {
    const std::string name = GetFileName(path);
    const auto dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string FileSystem::GetParentFolderName(const std::string& path) {
    const auto [begin, end] = LastComponent(path);
    if (begin == end) return {};
    const std::size_t root = RootLength(path);
    std::size_t length = begin;
    while (length > root && IsSeparator(path[length - 1])) --length;
    return path.substr(0, length);
}

std::string FileSystem::GetAbsolutePathName(const std::string& path) {
    const bool relative = RootLength(path) == 0;
    const std::string full = relative ? std::filesystem::current_path().string() + "/" + path : path;
    const std::size_t root = RootLength(full);
    std::string result = full.substr(0, root);
    std::vector<std::size_t> starts;  // of the components kept, their separator included
    for (std::size_t at = root; at < full.size();) {
        std::size_t end = at;
        while (end < full.size() && !IsSeparator(full[end])) ++end;
        const std::string_view component = std::string_view(full).substr(at, end - at);
        if (component == "..") {
            if (!starts.empty()) {
                result.resize(starts.back());
                starts.pop_back();
            }
        } else if (!component.empty() && component != ".") {
            starts.push_back(result.size());
            if (result.size() > root) result += full[at - 1];
            result += component;
        }
        at = end + 1;
    }
    return result;
}

void FileSystem::DeleteFile(const std::string& path, bool force) {
    struct stat found {};
    if (!Look(path, found)) throw RuntimeError(Fault::FileNotFound, path);
    const bool readOnly = (found.st_mode & S_IWUSR) == 0;
    if (S_ISDIR(found.st_mode) || (readOnly && !force)) throw RuntimeError(Fault::PermissionDenied, path);
    if (::unlink(SystemPath(path).c_str()) == 0) return;
    throw RuntimeError(errno == ENOENT ? Fault::FileNotFound : Fault::PermissionDenied, path);
}

}  // namespace orvo::posix
