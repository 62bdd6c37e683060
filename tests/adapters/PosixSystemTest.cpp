// What the system's services do beyond their contract.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>

#include "platform/posix/Clock.h"
#include "platform/posix/FileSystem.h"
#include "platform/posix/OperatingSystem.h"
#include "platform/posix/Registry.h"
#include "platform/posix/TextFiles.h"
#include "tests/Failure.h"
#include "tests/Rows.h"
#include "tests/Variable.h"
#include "tests/adapters/FileSizeLimit.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::posix {
namespace {

namespace fs = std::filesystem;

TEST(PosixSystem, FoldersAreNeverDeletedAndPathsAreResolvedInTheText) {
    const TempFolder folder;
    fs::create_directory(folder / "sub");
    fs::create_directory_symlink(folder / "sub", folder / "link");
    for (const char* name : {"sub", "sub/", "link"})
        EXPECT_EQ(NumberOf([&] { FileSystem().DeleteFile(folder / name, true); }), 70) << name;
    EXPECT_THAT(folder.Names(), testing::ElementsAre("link", "sub"));
    const std::string current = fs::current_path().string();
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

struct PosixReport : testing::Test {
    TempFolder folder;
    TextFiles files;
};

TEST_F(PosixReport, FollowsNoLinksAndWaitsForNoReader) {
    const std::string other = folder.Put("other", "of somebody");
    fs::create_symlink(other, folder / "log");
    EXPECT_EQ(NumberOf([&] { files.Append(folder / "log", "x"); }), 70);
    files.Replace(folder / "saved", "text");
    EXPECT_EQ(ReadFile(folder / "saved"), "text");
    EXPECT_EQ(ReadFile(other), "of somebody");
    EXPECT_EQ(fs::status(folder / "saved").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    ::mkfifo((folder / "pipe").c_str(), 0600);
    EXPECT_NE(NumberOf([&] { files.Append(folder / "pipe", "x"); }), 0);
}

TEST_F(PosixReport, AFileThatCannotGrowKeepsWhatItHeld) {
    const std::string log = folder.Put("log", std::string(1000, 'o'));
    const std::string saved = folder.Put("saved", "old");
    {
        const FileSizeLimit limit(1010);
        EXPECT_EQ(NumberOf([&] { files.Append(log, std::string(100, 'n')); }), 61);
        EXPECT_EQ(NumberOf([&] { files.Replace(saved, std::string(2000, 'n')); }), 61);
    }
    EXPECT_EQ(ReadFile(log), std::string(1000, 'o'));
    EXPECT_EQ(ReadFile(saved), "old");
    EXPECT_THAT(folder.Names(), testing::ElementsAre("log", "saved"));
}

TEST_F(PosixReport, ProcessesThatAppendAtOnceDoNotMix) {
    constexpr std::size_t kReports = 200, kLength = 9000;
    const std::string marks = "abc";
    for (const char mark : marks) {
        if (::fork() != 0) continue;
        for (std::size_t i = 0; i < kReports; ++i) files.Append(folder / "log", std::string(kLength, mark));
        ::_exit(0);
    }
    while (::wait(nullptr) > 0) continue;
    const std::string log = ReadFile(folder / "log");
    ASSERT_EQ(log.size(), marks.size() * kReports * kLength);
    for (std::size_t at = 0; at < log.size(); at += kLength)
        ASSERT_TRUE(log.find_first_not_of(log[at], at) >= at + kLength) << at;
}

TEST_F(PosixReport, TheFolderForReportsIsTheUsersOwn) {
    const std::string own = FolderOfUser(folder.Path());
    EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all);
    EXPECT_EQ(FolderOfUser(folder.Path()), own);
    fs::permissions(own, fs::perms::all);
    EXPECT_EQ(NumberOf([&] { FolderOfUser(folder.Path()); }), 70);
    fs::remove(own);
    fs::create_directory(folder / "elsewhere");
    fs::create_directory_symlink(folder / "elsewhere", own);
    EXPECT_EQ(NumberOf([&] { FolderOfUser(folder.Path()); }), 70);
    EXPECT_EQ(NumberOf([&] { FolderOfUser(folder / "none"); }), 76);
    for (const auto& [temp, tmpdir, expected] :
         {std::tuple("/a", "/b", "/a"), {"", "/b", "/b"}, {"", "", "/tmp/orvo-tile-"}}) {
        const Variable first("TEMP", temp);
        const Variable second("TMPDIR", tmpdir);
        EXPECT_THAT(OperatingSystem().TempFolder(), testing::StartsWith(expected));
    }
}

}  // namespace
}  // namespace orvo::posix
