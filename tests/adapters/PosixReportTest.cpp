// What the error report needs of the system: its files, the folder for them, programs that run on.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "platform/fake/World.h"
#include "platform/posix/OperatingSystem.h"
#include "platform/posix/ProcessRunner.h"
#include "platform/posix/TextFiles.h"
#include "tests/adapters/TempFolder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

/// The number that a call fails with; 0 where it works.
template <class Call>
Long NumberOf(Call&& call) {
    try {
        call();
    } catch (const RuntimeError& failure) {
        return failure.Number();
    }
    return 0;
}

/// One kind of text files: `folder` is there, "locked" in it cannot be written.
struct Files {
    std::shared_ptr<ITextFiles> files;
    std::string folder;
    std::function<std::string(const std::string&)> content;
    std::shared_ptr<void> behind;
};

Files PosixFiles() {
    auto folder = std::make_shared<TempFolder>();
    fs::create_directory(*folder / "locked");
    return {std::make_shared<posix::TextFiles>(), folder->Path(),
            [folder](const std::string& name) { return ReadFile(*folder / name); }, folder};
}

Files FakeFiles() {
    const auto world = fake::World::Make();
    world->lockedFiles.insert("C:\\Temp\\locked");
    return {world->MakePlatform().textFiles, "C:\\Temp",
            [world](const std::string& name) { return world->files["C:\\Temp\\" + name]; }, world};
}

class TextFilesContract : public testing::TestWithParam<Files (*)()> {};
INSTANTIATE_TEST_SUITE_P(All, TextFilesContract, testing::Values(&PosixFiles, &FakeFiles),
                         [](const auto& param) { return param.index == 0 ? "Posix" : "Fake"; });

TEST_P(TextFilesContract, AppendsReplacesAndFailsWithItsNumbers) {
    const Files at = GetParam()();
    ITextFiles& files = *at.files;
    const std::string log = at.folder + "\\log";
    EXPECT_FALSE(files.Exists(log));
    files.Append(log, "one\r\n");
    files.Append(at.folder + "/log", std::string("t\0o", 3));
    EXPECT_TRUE(files.Exists(log));
    EXPECT_EQ(at.content("log"), std::string("one\r\nt\0o", 8));
    files.Replace(log, "long enough");
    files.Replace(log, "new");
    EXPECT_EQ(at.content("log"), "new");
    for (const auto write : {&ITextFiles::Append, &ITextFiles::Replace}) {
        EXPECT_EQ(NumberOf([&] { (files.*write)(at.folder + "\\none\\log", "x"); }), 76);
        EXPECT_EQ(NumberOf([&] { (files.*write)(at.folder + "\\locked", "x"); }), 70);
    }
}

class PosixReport : public testing::Test {
  protected:
    TempFolder folder;
    posix::TextFiles files;
};

TEST_F(PosixReport, FollowsNoLinksAndLeavesNoPieces) {
    const std::string other = folder.Put("other", "of somebody");
    fs::create_symlink(other, folder / "log");
    EXPECT_EQ(NumberOf([&] { files.Append(folder / "log", "x"); }), 70);
    fs::create_symlink(other, folder / ("saved.part" + std::to_string(::getpid())));
    files.Replace(folder / "saved", "text");
    EXPECT_EQ(ReadFile(folder / "saved"), "text");
    EXPECT_EQ(ReadFile(other), "of somebody");
    fs::create_directory(folder / "locked");
    EXPECT_EQ(NumberOf([&] { files.Replace(folder / "locked", "x"); }), 70);
    ::mkfifo((folder / "pipe").c_str(), 0600);
    EXPECT_NE(NumberOf([&] { files.Append(folder / "pipe", "x"); }), 0) << "nobody reads it: must not wait";
    EXPECT_THAT(folder.Names(), testing::ElementsAre("locked", "log", "other", "pipe", "saved"));
    EXPECT_EQ(fs::status(folder / "saved").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(PosixReport, AFileThatCannotGrowKeepsWhatItHeld) {
    const std::string log = folder.Put("log", std::string(1000, 'o'));
    const std::string saved = folder.Put("saved", "old");
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const auto action = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1010, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const Long append = NumberOf([&] { files.Append(log, std::string(100, 'n')); });
    const Long replace = NumberOf([&] { files.Replace(saved, std::string(2000, 'n')); });
    ::setrlimit(RLIMIT_FSIZE, &before);
    static_cast<void>(std::signal(SIGXFSZ, action));
    EXPECT_EQ(append, 61);
    EXPECT_EQ(replace, 61);
    EXPECT_EQ(ReadFile(log), std::string(1000, 'o'));
    EXPECT_EQ(ReadFile(saved), "old");
    EXPECT_THAT(folder.Names(), testing::ElementsAre("log", "saved"));
    EXPECT_EQ(NumberOf([&] { files.Append("/dev/full", "x"); }), 61);
}

/// Bytes that this process has read so far, by any call.
long BytesRead() {
    const std::string text = ReadFile("/proc/self/io");
    return std::stol(text.substr(text.find(' ')));
}

TEST_F(PosixReport, AGreatLogIsNotRead) {
    const std::string log = folder.Put("log", "");
    constexpr std::uintmax_t kGreat = 1U << 30U;
    fs::resize_file(log, kGreat);
    const long before = BytesRead();
    files.Append(log, "report");
    EXPECT_LT(BytesRead() - before, 10000);
    EXPECT_EQ(fs::file_size(log), kGreat + 6);
    struct stat found {};
    ::stat(log.c_str(), &found);
    EXPECT_LT(found.st_blocks, 100) << "nor written anew";
}

TEST_F(PosixReport, ProcessesThatAppendAtOnceDoNotMix) {
    constexpr int kReports = 200;
    constexpr std::size_t kLength = 9000;
    std::vector<pid_t> writers;
    for (const char mark : {'a', 'b', 'c'}) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            for (int i = 0; i < kReports; ++i) files.Append(folder / "log", std::string(kLength, mark));
            ::_exit(0);
        }
        writers.push_back(pid);
    }
    for (const pid_t pid : writers) ::waitpid(pid, nullptr, 0);
    const std::string log = ReadFile(folder / "log");
    ASSERT_EQ(log.size(), writers.size() * kReports * kLength);
    for (std::size_t at = 0; at < log.size(); at += kLength)
        ASSERT_EQ(log.find_first_not_of(log[at], at) >= at + kLength, true) << at;
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
}

TEST_F(PosixReport, TheEnvironmentNamesTheFolder) {
    const struct {
        const char *temp, *tmpdir;
        std::string expected;
    } kCases[] = {{"/a", "/b", "/a"}, {"", "/b", "/b"}, {"", "", "/tmp/orvo-tile-"}};
    const char* const before = std::getenv("TEMP");
    const std::string temp = before == nullptr ? "" : before;
    for (const auto& [first, second, expected] : kCases) {
        ::setenv("TEMP", first, 1);
        ::setenv("TMPDIR", second, 1);
        EXPECT_THAT(posix::OperatingSystem().TempFolder(), testing::StartsWith(expected));
    }
    ::unsetenv("TMPDIR");
    temp.empty() ? ::unsetenv("TEMP") : ::setenv("TEMP", temp.c_str(), 1);
}

TEST_F(PosixReport, StartedProgramsRunOnInASessionOfTheirOwn) {
    posix::ProcessRunner runner;
    using std::chrono::milliseconds;
    EXPECT_EQ(runner.Start("/bin/sh", {"-c", "exit 3"}, milliseconds(20000)).exitCode, 3);
    EXPECT_FALSE(runner.Start("no-such-program", {}, milliseconds(1)).started);
    const std::string script = folder.PutScript(
        "browser",
        "echo lost; while [ ! -e go ]; do sleep 0.02; done; ps -o sid= -p $$ > sid.part; mv sid.part sid");
    const auto before = fs::current_path();
    fs::current_path(folder.Path());
    const ProcessResult left = runner.Start("./browser", {}, milliseconds(50));
    fs::current_path(before);
    EXPECT_TRUE(left.started);
    EXPECT_EQ(left.exitCode, -1);
    EXPECT_EQ(left.signal, 0);
    folder.Put("go", "");
    for (int i = 0; i < 500 && !fs::exists(folder / "sid"); ++i) ::usleep(20000);
    const std::string session = ReadFile(folder / "sid");
    ASSERT_FALSE(session.empty());
    EXPECT_NE(std::stoi(session), ::getsid(0));
    // Its end is taken note of at the next start.
    for (int i = 0; i < 500 && ::waitpid(-1, nullptr, WNOHANG) == 0; ++i) {
        runner.Start("/bin/true", {}, milliseconds(1000));
        ::usleep(20000);
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

}  // namespace
}  // namespace orvo
