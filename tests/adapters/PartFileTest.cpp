// Part files: many writers, names that are taken, who may read, nothing left behind.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>

#include "platform/files/PartFile.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::files {
namespace {

TEST(PartFile, WritersOfOneNameNeverMixAndLeaveNoParts) {
    const TempFolder folder;
    const mode_t mask = ::umask(027);
    const auto write = [&](char letter) {
        for (int i = 0; i < 50; ++i) EXPECT_FALSE(WriteWhole(folder / "t.png", std::string(100000, letter)));
    };
    const pid_t other = ::fork();
    if (other == 0) write('c'), ::_exit(0);
    auto thread = std::async(std::launch::async, write, 'b');
    write('a');
    thread.wait();
    ::waitpid(other, nullptr, 0);
    EXPECT_FALSE(WriteWhole(folder / "own", "x", Readers::OwnerOnly));
    ::umask(mask);
    const std::string text = ReadFile(folder / "t.png");
    EXPECT_EQ(text, std::string(100000, text.at(0)));
    EXPECT_EQ(std::filesystem::status(folder / "t.png").permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(std::filesystem::status(folder / "own").permissions(), std::filesystem::perms(0600));
    EXPECT_THAT(folder.Names(), testing::ElementsAre("own", "t.png"));
    std::error_code failed;
    PartFile part(folder.Path(), ".png", failed);
    EXPECT_FALSE(part.Write("longer than what follows") || part.Write("new"));
    EXPECT_EQ(part.MoveToNew(folder / "t.png"), std::errc::file_exists);
    EXPECT_FALSE(part.MoveToNew(folder / "u.png") || part.MoveBack(folder / "u.png") ||
                 part.MoveTo(folder / "t.png"));
    EXPECT_EQ(ReadFile(folder / "t.png"), "new");
    EXPECT_EQ(WriteWhole(folder / "none/x", "x"), std::errc::no_such_file_or_directory);
}

}  // namespace
}  // namespace orvo::files
