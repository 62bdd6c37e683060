// Programs that behave, fail, crash, hang, shout and leave others behind.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "platform/posix/ProcessRunner.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::posix {
namespace {

using Clock = std::chrono::steady_clock;

const auto kNever = [] { return false; };

struct PosixProcess : testing::Test {
    ProcessResult Shell(const std::string& commands) {
        return runner.Run("/bin/sh", {"-c", commands}, folder.Path(), kNever);
    }
    double SecondsSinceStart() const { return std::chrono::duration<double>(Clock::now() - start).count(); }
    const TempFolder folder{"-q 'Ö\" %d"};
    ProcessRunner runner;
    Clock::time_point start = Clock::now();
};

TEST_F(PosixProcess, PassesArgumentsFolderAndNothingElse) {
    const int open = ::dup(0);  // inherited unless closed on the way
    const auto result =
        runner.Run(folder.PutScript("show", "cat; pwd; echo $(ls /proc/self/fd); printf '[%s]' \"$@\""),
                   {"a b", "", "$(id)", "*", "-x"}, folder.Path(), kNever);
    ::close(open);
    EXPECT_TRUE(result.started && result.exitCode == 0);
    // The fourth is the folder that the listing reads.
    EXPECT_EQ(result.output, folder.Path() + "\n0 1 2 3\n[a b][][$(id)][*][-x]");
}

TEST_F(PosixProcess, ReportsHowItEndedAndTheLastLines) {
    EXPECT_EQ(Shell("exit 7").exitCode, 7);
    const auto crashed = Shell("echo before; echo err >&2; kill -SEGV $$");
    EXPECT_EQ(crashed.signal, SIGSEGV);
    EXPECT_EQ(crashed.output, "before\nerr");
    const auto lines = Shell("i=0; while [ $i -lt 3000 ]; do i=$((i+1)); echo line $i; done").output;
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 19);
    EXPECT_TRUE(lines.starts_with("line 2981\n") && lines.ends_with("\nline 3000"));
    EXPECT_THAT(Shell("head -c 300000 /dev/zero | tr '\\0' x").output, testing::SizeIs(4096));
}

TEST_F(PosixProcess, SaysWhyItCouldNotStartAndFindsRelativeProgramsInTheCallersFolder) {
    for (const std::string& program : {folder / "missing", std::string("no-such-program-anywhere"),
                                       std::string(), folder.Put("plain", "no program"), folder.Path()}) {
        const auto result = runner.Run(program, {}, folder.Path(), kNever);
        EXPECT_TRUE(!result.started && result.output != "") << program;
    }
    EXPECT_FALSE(runner.Run("/bin/true", {}, folder / "no folder", kNever).started);
    folder.PutScript("tool", "echo found");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    EXPECT_EQ(runner.Run("./tool", {}, "/", kNever).output, "found");
    std::filesystem::current_path(before);
}

TEST_F(PosixProcess, WaitsNeitherForWhatRunsOnNorForAnInterruptedProgram) {
    EXPECT_EQ(Shell("sleep 30 & echo done").output, "done");
    const auto soon = [this] { return SecondsSinceStart() > 0.2; };
    EXPECT_EQ(runner.Run("/bin/sh", {"-c", "sleep 30; echo never"}, folder.Path(), soon).signal, SIGTERM);
    EXPECT_LT(SecondsSinceStart(), 10);
}

TEST_F(PosixProcess, KillsAProgramThatDoesNotListen) {
    const auto soon = [this] { return SecondsSinceStart() > 0.2; };
    const std::string deaf =
        "trap '' TERM; (while :; do sleep 0.1; touch alive; done) & while :; do sleep 0.1; done";
    const auto result = runner.Run("/bin/sh", {"-c", deaf}, folder.Path(), soon);
    EXPECT_EQ(result.signal, SIGKILL);
    EXPECT_THAT(SecondsSinceStart(), testing::AllOf(testing::Gt(1), testing::Lt(10)));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::filesystem::remove(folder / "alive");
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    EXPECT_FALSE(std::filesystem::exists(folder / "alive"));
}

TEST_F(PosixProcess, LeavesNoOpenFiles) {
    const auto openFiles = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = openFiles();
    for (int i = 0; i < 100; ++i) {
        runner.Run("/bin/true", {}, folder.Path(), kNever);
        runner.Run("/bin/none", {}, folder.Path(), kNever);
    }
    EXPECT_EQ(openFiles(), before);
}

TEST_F(PosixProcess, StartedProgramsRunOnInASessionOfTheirOwn) {
    using std::chrono::milliseconds;
    EXPECT_EQ(runner.Start("/bin/sh", {"-c", "exit 3"}, milliseconds(20000)).exitCode, 3);
    EXPECT_FALSE(runner.Start("no-such-program", {}, milliseconds(1)).started);
    const std::string script =
        "cd \"$0\"; echo lost; while [ ! -e go ]; do sleep 0.02; done; "
        "ps -o sid= -p $$ > sid.part; mv sid.part sid";
    const ProcessResult left = runner.Start("/bin/sh", {"-c", script, folder.Path()}, milliseconds(50));
    EXPECT_TRUE(left.started && left.exitCode == -1 && left.signal == 0);
    folder.Put("go", "");
    for (int i = 0; i < 500 && !std::filesystem::exists(folder / "sid"); ++i) ::usleep(20000);
    EXPECT_NE(std::stoi(ReadFile(folder / "sid")), ::getsid(0));
    // Its end is taken note of at the next start.
    for (int i = 0; i < 500 && ::waitpid(-1, nullptr, WNOHANG) == 0; ++i) {
        runner.Start("/bin/true", {}, milliseconds(1000));
        ::usleep(20000);
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

}  // namespace
}  // namespace orvo::posix
