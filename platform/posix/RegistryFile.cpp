#include "platform/posix/RegistryFile.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>
#include <utility>

namespace orvo::posix {
namespace {

constexpr Long kSuccess = 0;
constexpr Long kNotFound = 2;
constexpr Long kBadHandle = 6;
constexpr Long kMoreData = 234;

constexpr std::array<std::pair<Long, const char*>, 5> kHives{{
    {static_cast<Long>(0x80000000U), "hkey_classes_root"},
    {IRegistry::kCurrentUser, "hkey_current_user"},
    {static_cast<Long>(0x80000002U), "hkey_local_machine"},
    {static_cast<Long>(0x80000003U), "hkey_users"},
    {static_cast<Long>(0x80000005U), "hkey_current_config"},
}};
constexpr const char* kShellFolders =
    "hkey_current_user\\software\\microsoft\\windows\\currentversion\\explorer\\shell folders";
constexpr const char* kAppData = "appdata";

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

std::string Home() {
    std::string home = Environment("HOME");
    if (!home.empty()) return home;
    const passwd* user = ::getpwuid(::getuid());
    return user == nullptr ? "/" : user->pw_dir;
}

/// A folder that the environment may move; a relative one does not count.
std::string UserFolder(const char* variable, const char* belowHome) {
    std::string folder = Environment(variable);
    return folder.starts_with('/') ? folder : Home() + belowHome;
}

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

std::string RegistryFile::DefaultPath() {
    return UserFolder("XDG_CONFIG_HOME", "/.config") + "/orvo_tile/registry.reg";
}

const RegistryKeys& RegistryFile::Keys() {
    if (!keys_) {
        RegistryKeys keys = ParseRegistry(ReadAll(path_));
        for (const auto& [handle, name] : kHives) keys.try_emplace(name);
        const RegistryValue dataFolder{kTypeString, UserFolder("XDG_DATA_HOME", "/.local/share") + '\0'};
        AddKey(keys, kShellFolders).try_emplace(kAppData, dataFolder);
        keys_ = std::move(keys);
    }
    return *keys_;
}

std::optional<std::string> RegistryFile::PathOf(Long handle) const {
    for (const auto& [hive, name] : kHives) {
        if (hive == handle) return name;
    }
    const auto found = open_.find(handle);
    return found == open_.end() ? std::nullopt : std::optional(found->second);
}

Long RegistryFile::RegOpenKey(Long hKey, const std::string& path, Long& handle) {
    std::optional<std::string> name = PathOf(hKey);
    if (!name) return kBadHandle;
    std::string_view below = path;
    while (below.ends_with('\\')) below.remove_suffix(1);
    if (!below.empty()) *name += "\\" + FoldName(below);
    if (!Keys().contains(*name)) return kNotFound;
    open_[++lastHandle_] = std::move(*name);
    handle = lastHandle_;
    return kSuccess;
}

Long RegistryFile::RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) {
    const std::optional<std::string> path = PathOf(hKey);
    if (!path) return kBadHandle;
    const RegistryKey& key = Keys().at(*path);
    const auto found = key.find(FoldName(name));
    if (found == key.end()) return kNotFound;
    const RegistryValue& value = found->second;
    const Long room = std::exchange(size, static_cast<Long>(value.data.size()));
    type = value.type;
    if (data == nullptr) return kSuccess;
    if (room < size) return kMoreData;
    std::copy(value.data.begin(), value.data.end(), data);
    return kSuccess;
}

Long RegistryFile::RegCloseKey(Long handle) {
    if (!PathOf(handle)) return kBadHandle;
    open_.erase(handle);
    return kSuccess;
}

}  // namespace orvo::posix
