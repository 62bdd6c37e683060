#include "platform/posix/Registry.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "support/Text.h"

namespace orvo::posix {
namespace {

constexpr Long kSuccess = 0;
constexpr Long kNotFound = 2;
constexpr Long kBadHandle = 6;
constexpr Long kMoreData = 234;

constexpr const char* kShellFolders = "software\\microsoft\\windows\\currentversion\\explorer\\shell folders";
constexpr Long kShellFoldersKey = 1;

std::string DataFolder() {
    const char* const moved = std::getenv("XDG_DATA_HOME");
    if (moved != nullptr && *moved == '/') return moved;  // a relative one does not count
    const char* const home = std::getenv("HOME");
    if (home != nullptr && *home != '\0') return std::string(home) + "/.local/share";
    const passwd* const user = ::getpwuid(::getuid());
    return std::string(user == nullptr ? "" : user->pw_dir) + "/.local/share";
}

}  // namespace

Long Registry::RegOpenKey(Long hKey, const std::string& path, Long& handle) {
    if (hKey != kCurrentUser || LCase(path) != kShellFolders) return kNotFound;
    handle = kShellFoldersKey;
    ++opened_;
    return kSuccess;
}

Long Registry::RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) {
    if (hKey != kShellFoldersKey || opened_ == 0) return kBadHandle;
    if (LCase(name) != "appdata") return kNotFound;
    const std::string value = DataFolder() + '\0';
    const Long room = std::exchange(size, static_cast<Long>(value.size()));
    type = kTypeString;
    if (data == nullptr) return kSuccess;
    if (room < size) return kMoreData;
    std::copy(value.begin(), value.end(), data);
    return kSuccess;
}

Long Registry::RegCloseKey(Long handle) {
    if (handle != kShellFoldersKey || opened_ == 0) return kBadHandle;
    --opened_;
    return kSuccess;
}

}  // namespace orvo::posix
