// What the error report needs of the system: its files, the folder for them, programs that run on.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/OperatingSystem.h"
#include "platform/posix/ProcessRunner.h"
#include "platform/posix/TextFiles.h"
#include "tests/Failure.h"
#include "tests/Variable.h"
#include "tests/adapters/FileSizeLimit.h"
#include "tests/adapters/TempFolder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

class PosixReport : public testing::Test {
  protected:
    TempFolder folder;
    posix::TextFiles files;
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
    const std::string own = posix::FolderOfUser(folder.Path());
    EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all);
    EXPECT_EQ(posix::FolderOfUser(folder.Path()), own);
    fs::permissions(own, fs::perms::all);
    EXPECT_EQ(NumberOf([&] { posix::FolderOfUser(folder.Path()); }), 70);
    fs::remove(own);
    fs::create_directory(folder / "elsewhere");
    fs::create_directory_symlink(folder / "elsewhere", own);
    EXPECT_EQ(NumberOf([&] { posix::FolderOfUser(folder.Path()); }), 70);
    EXPECT_EQ(NumberOf([&] { posix::FolderOfUser(folder / "none"); }), 76);
    for (const auto& [temp, tmpdir, expected] :
         {std::tuple("/a", "/b", "/a"), {"", "/b", "/b"}, {"", "", "/tmp/orvo-tile-"}}) {
        const Variable first("TEMP", temp);
        const Variable second("TMPDIR", tmpdir);
        EXPECT_THAT(posix::OperatingSystem().TempFolder(), testing::StartsWith(expected));
    }
}

TEST_F(PosixReport, StartedProgramsRunOnInASessionOfTheirOwn) {
    posix::ProcessRunner runner;
    using std::chrono::milliseconds;
    EXPECT_EQ(runner.Start("/bin/sh", {"-c", "exit 3"}, milliseconds(20000)).exitCode, 3);
    EXPECT_FALSE(runner.Start("no-such-program", {}, milliseconds(1)).started);
    const std::string script =
        "cd \"$0\"; echo lost; while [ ! -e go ]; do sleep 0.02; done; "
        "ps -o sid= -p $$ > sid.part; mv sid.part sid";
    const ProcessResult left = runner.Start("/bin/sh", {"-c", script, folder.Path()}, milliseconds(50));
    EXPECT_TRUE(left.started && left.exitCode == -1 && left.signal == 0);
    folder.Put("go", "");
    for (int i = 0; i < 500 && !fs::exists(folder / "sid"); ++i) ::usleep(20000);
    EXPECT_NE(std::stoi(ReadFile(folder / "sid")), ::getsid(0));
    // Its end is taken note of at the next start.
    for (int i = 0; i < 500 && ::waitpid(-1, nullptr, WNOHANG) == 0; ++i) {
        runner.Start("/bin/true", {}, milliseconds(1000));
        ::usleep(20000);
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

}  // namespace
}  // namespace orvo
