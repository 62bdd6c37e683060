// What the operating system's services do beyond their contract.
#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <thread>

#include "platform/windows/system/ProcessRunner.h"
#include "platform/windows/system/System.h"
#include "platform/windows/system/Win32.h"
#include "support/SystemPath.h"
#include "tests/adapters/TempFolder.h"
#include "tests/windows/Self.h"

namespace orvo::windows {
namespace {

using std::chrono::seconds;

TEST(WindowsSystem, TellsLocalTimeVersionAndTempFolder) {
    Clock clock;
    const std::time_t before = std::time(nullptr);
    const LocalTime now = clock.Local(clock.Seconds());
    std::tm as = *std::localtime(&before);
    as.tm_year = now.year - 1900, as.tm_mon = now.month - 1, as.tm_mday = now.day;
    as.tm_hour = now.hour, as.tm_min = now.minute, as.tm_sec = now.second;
    EXPECT_LE(std::mktime(&as) - before, 2);
    EXPECT_GE(std::mktime(&as), before);
    OperatingSystem system;
    EXPECT_TRUE(system.GetVersion().platformId == 2 && system.GetVersion().major >= 5);
    const std::string temp = system.TempFolder();
    for (const auto& [set, expected] : {std::pair{L"C:\\T\x00E9mp", "C:\\Témp"}, std::pair{L"", ""}}) {
        ::SetEnvironmentVariableW(L"TEMP", set);
        EXPECT_EQ(system.TempFolder(), expected);
    }
    ::SetEnvironmentVariableW(L"TEMP", DiskPath(temp).c_str());
}

TEST(WindowsTextFiles, ReplaceWhatAReaderHolds) {
    const TempFolder folder;
    const std::string file = folder.Put("log.EPT", "long text");
    {
        const std::ifstream held(DiskPath(file));  // its reader does not let it be renamed or removed
        TextFiles().Replace(file, "x");
    }
    EXPECT_TRUE(ReadFile(file) == "x" && folder.Names().size() == 1);
}

TEST(WindowsTextFiles, KeepTheLinesOfTwoWritersApart) {
    const TempFolder folder("ranä ☕");
    const auto append = [&](char letter) {
        for (int i = 0; i < 200; ++i)
            TextFiles().Append(folder / "shared.txt", std::string(99, letter) + "\r\n");
    };
    std::thread other(append, 'a');
    append('b');
    other.join();
    const std::string text = ReadFile(folder / "shared.txt");
    ASSERT_EQ(text.size(), 400U * 101);
    for (std::size_t at = 0; at < text.size(); at += 101)
        ASSERT_EQ(text.substr(at, 101), std::string(99, text[at]) + "\r\n");
}

TEST(WindowsProcesses, HandOverArgumentsAndEnd) {
    const TempFolder folder("ranä");
    ProcessRunner runner;
    const auto never = [] { return false; };
    const std::vector<std::string> arguments{"--echo", "a b", "", "c\\", "d\"e\\\"f", "g\\ h\\", "-x=1"};
    const ProcessResult echo = runner.Run(Self(), arguments, folder.Path(), never);
    EXPECT_EQ(std::to_string(echo.exitCode) + echo.output,
              "3[a b]\n[]\n[c\\]\n[d\"e\\\"f]\n[g\\ h\\]\n[-x=1]");
    EXPECT_FALSE(runner.Run("no-such-program", {}, folder.Path(), never).started);
    const ProcessResult ended = runner.Run(Self(), {"--wait"}, folder.Path(), [] { return true; });
    EXPECT_TRUE(ended.started && ended.exitCode == 1) << "ended once interrupted";
    EXPECT_EQ(runner.Start(Self(), {"--echo"}, seconds(20)).exitCode, 3);
}

}  // namespace
}  // namespace orvo::windows
