// The registry file's format, local time and the kernel's release.
#include <gtest/gtest.h>

#include <ctime>

#include "platform/posix/Clock.h"
#include "platform/posix/OperatingSystem.h"
#include "platform/posix/Registry.h"
#include "tests/Variable.h"

namespace orvo::posix {
namespace {

using std::string_literals::operator""s;

constexpr const char* kShellFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
/// "type:bytes" of a value; "none" where key or value is missing.
std::string Read(IRegistry& registry, const std::string& key, const std::string& name) {
    Long handle = 0;
    Long type = 0;
    Long size = 0;
    if (registry.RegOpenKey(IRegistry::kCurrentUser, key, handle) != 0) return "none";
    if (registry.RegQueryValueEx(handle, name, type, nullptr, size) != 0) return "none";
    std::string data(static_cast<std::size_t>(size), '?');
    registry.RegQueryValueEx(handle, name, type, data.data(), size);
    return std::to_string(type) + ":" + data;
}

TEST(PosixRegistry, KnowsTheDataFolder) {
    Registry registry;
    const Variable data("XDG_DATA_HOME", "/data/of user");
    EXPECT_EQ(Read(registry, kShellFolders, "appdata"), "1:/data/of user\0"s);
    EXPECT_EQ(Read(registry, kShellFolders, "Other"), "none");
    EXPECT_EQ(Read(registry, "Software\\Other", "AppData"), "none");
    const Variable relative("XDG_DATA_HOME", "relative");
    const Variable home("HOME", "/home/someone");
    EXPECT_EQ(Read(registry, kShellFolders, "AppData"), "1:/home/someone/.local/share\0"s);
}

TEST(PosixClock, TellsLocalTime) {
    {
        const Variable zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        Clock clock;
        const LocalTime summer = clock.Local(1720000000);  // 2024-07-03 09:46:40 UTC
        EXPECT_EQ(summer.year * 10000 + summer.month * 100 + summer.day, 20240703);
        EXPECT_EQ(summer.hour * 10000 + summer.minute * 100 + summer.second, 114640);
    }
    ::tzset();
}

TEST(PosixOperatingSystem, ReadsTheRelease) {
    for (const auto& [release, major, minor, build] : {std::tuple("6.1.0-18-amd64", 6, 1, 0),
                                                       {"5.15.146.1-custom", 5, 15, 146},
                                                       {"6.8-rc1", 6, 8, 0},
                                                       {"strange", 0, 0, 0}}) {
        const OSVersion version = VersionOfRelease(release);
        EXPECT_EQ(std::tuple(version.major, version.minor, version.build), std::tuple(major, minor, build));
    }
    const OSVersion own = OperatingSystem().GetVersion();
    EXPECT_EQ(own.platformId, 4);
    EXPECT_GE(own.major, 2);
}

}  // namespace
}  // namespace orvo::posix
