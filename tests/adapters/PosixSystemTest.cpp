// The data folder, local time and the kernel's release.
#include <gtest/gtest.h>

#include <ctime>

#include "platform/posix/Clock.h"
#include "platform/posix/OperatingSystem.h"
#include "platform/posix/Registry.h"
#include "tests/Variable.h"

namespace orvo::posix {
namespace {

TEST(PosixRegistry, NamesTheUsersDataFolder) {
    const Variable home("HOME", "/home/someone");
    for (const auto& [variable, expected] : {std::pair("/data/of user", "/data/of user"),
                                             {"relative", "/home/someone/.local/share"},
                                             {"", "/home/someone/.local/share"}}) {
        const Variable data("XDG_DATA_HOME", variable);
        Registry registry;
        Long key = 0, type = 0, size = 200;
        std::string text(200, '?');
        registry.RegOpenKey(IRegistry::kCurrentUser,
                            "software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", key);
        EXPECT_EQ(registry.RegQueryValueEx(key, "APPDATA", type, text.data(), size), 0);
        EXPECT_EQ(text.c_str(), std::string(expected));
    }
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
}

}  // namespace
}  // namespace orvo::posix
