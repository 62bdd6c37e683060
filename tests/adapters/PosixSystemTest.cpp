// What the system's services do beyond their contract.
#include <gmock/gmock.h>

#include <ctime>

#include "platform/posix/Clock.h"
#include "platform/posix/FileSystem.h"
#include "platform/posix/OperatingSystem.h"
#include "platform/posix/Registry.h"
#include "tests/Failure.h"
#include "tests/Rows.h"
#include "tests/Variable.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::posix {
namespace {

TEST(PosixSystem, FoldersAreNeverDeletedAndPathsAreResolvedInTheText) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "sub");
    std::filesystem::create_directory_symlink(folder / "sub", folder / "link");
    for (const char* name : {"sub", "sub/", "link"})
        EXPECT_EQ(NumberOf([&] { FileSystem().DeleteFile(folder / name, true); }), 70) << name;
    EXPECT_THAT(folder.Names(), testing::ElementsAre("link", "sub"));
    const std::string current = std::filesystem::current_path().string();
    for (const std::string& row : {std::string("/a/./b/../c|/a/c"),
                                   {"/a\\b\\..\\c\\|/a\\c"},
                                   {"/../..|/"},
                                   {"C:\\x\\..\\..\\y|C:\\y"},
                                   "|" + current,
                                   "x/../z..|" + current + "/z.."})
        EXPECT_EQ(FileSystem().GetAbsolutePathName(Cells(row)[0]), Cells(row)[1]);
    EXPECT_EQ(FileSystem().GetParentFolderName("C:\\\\x"), "C:\\\\");
    EXPECT_EQ(FileSystem().GetParentFolderName("a//b"), "a");
}

TEST(PosixSystem, TheUsersDataFolderIsThatOfTheVariableOrBelowHome) {
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
        EXPECT_STREQ(text.c_str(), expected);
    }
}

TEST(PosixSystem, TimeIsLocalAndTheVersionThatOfTheRelease) {
    {
        const Variable zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        const LocalTime summer = Clock().Local(1720000000);  // 2024-07-03 09:46:40 UTC
        EXPECT_EQ(summer.year * 10000 + summer.month * 100 + summer.day, 20240703);
        EXPECT_EQ(summer.hour * 10000 + summer.minute * 100 + summer.second, 114640);
    }
    ::tzset();
    for (const char* row :
         {"6.1.0-18-amd64|6|1|0", "5.15.146.1-custom|5|15|146", "6.8-rc1|6|8|0", "strange|0|0|0"}) {
        const OSVersion version = VersionOfRelease(Cells(row)[0]);
        EXPECT_EQ(std::to_string(version.major), Cells(row)[1]);
        EXPECT_EQ(std::to_string(version.minor), Cells(row)[2]);
        EXPECT_EQ(std::to_string(version.build), Cells(row)[3]);
    }
}

}  // namespace
}  // namespace orvo::posix
