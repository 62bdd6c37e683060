// Free names on the disk: reservations, several processes, folders that refuse.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include <future>
#include <set>

#include "platform/RuntimeError.h"
#include "platform/utility/UtilTools.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::utility {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The number and the text that asking for a name fails with.
std::pair<Long, std::string> RefusalIn(const std::string& folder, const std::string& extension = "png") {
    UtilTools tools(std::make_shared<SharedState>(), {});
    try {
        tools.GetFreeFileName(folder, "i", {extension});
        return {};
    } catch (const RuntimeError& error) {
        return {error.Number(), error.Description()};
    }
}

/// Runs a check in a process of its own; what it returns must be below 256.
int InOtherProcess(const std::function<int()>& check) {
    const pid_t pid = ::fork();
    if (pid == 0) ::_exit(check());
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(UtilityNames, JoinsWithTheFoldersKindOfSeparator) {
    const TempFolder folder("a b");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    std::filesystem::create_directories("x/y");
    for (const auto& [path, expected] :
         {std::pair("", "i_1"), {"x\\y", "x\\y\\i_1"}, {".\\x\\", ".\\x\\i_1"}, {"./x\\y", "./x\\y/i_1"}})
        EXPECT_EQ(UtilTools(std::make_shared<SharedState>(), {}).GetFreeFileName(path, "i", {"png"}),
                  expected);
    EXPECT_TRUE(std::filesystem::is_empty("x/y"));
    std::filesystem::current_path(before);
}

TEST(UtilityNames, HoldsANameUntilItsFileStandsOrItsObjectEnds) {
    const TempFolder folder;
    const auto state = std::make_shared<SharedState>();
    UtilTools run(state, {});
    {
        UtilTools once(state, {});
        const std::string first = run.GetFreeFileName(folder.Path(), "i", {"png"});
        const std::string second = once.GetFreeFileName(folder.Path(), "i", {"jpg", "gif"});
        const std::string third = once.GetFreeFileName(folder.Path(), "i", {"png"});
        EXPECT_THAT(folder.Names(), ElementsAre(".i_1.reserved", ".i_2.reserved", ".i_3.reserved"));
        EXPECT_EQ(state->reservations.OnlyExtension(first), "png");
        EXPECT_EQ(state->reservations.OnlyExtension(second), std::nullopt);
        state->reservations.Release(second + ".gif");
        EXPECT_THAT(folder.Names(), ElementsAre(".i_1.reserved", ".i_3.reserved"));
        UtilTools stranger(std::make_shared<SharedState>(), {});
        EXPECT_EQ(stranger.GetFreeFileName(folder.Path(), "i", {"png"}), folder / "i_2");
        EXPECT_EQ(stranger.GetFreeFileName(folder.Path(), "i", {"png"}), folder / "i_4");
    }
    EXPECT_THAT(folder.Names(), ElementsAre(".i_1.reserved"));
    EXPECT_EQ(run.GetFreeFileName(folder.Path(), "i", {"png"}), folder / "i_4");
}

TEST(UtilityNames, StrangersNeverGetTheSameName) {
    const TempFolder folder;
    const auto take = [&] {
        const auto state = std::make_shared<SharedState>();
        UtilTools tools(state, {});
        std::vector<std::string> names;
        for (int i = 0; i < 300; ++i) {
            names.push_back(tools.GetFreeFileName(folder.Path(), "i", {"tif", "png"}));
            std::ofstream(names.back() + ".png") << "x";
            state->reservations.Release(names.back() + ".png");
        }
        return names;
    };
    auto others = std::async(std::launch::async, take);
    const auto mine = take();
    std::set<std::string> names(mine.begin(), mine.end());
    for (const auto& name : others.get()) EXPECT_TRUE(names.insert(name).second) << name;
    EXPECT_EQ(folder.Names().size(), 600U);
}

TEST(UtilityNames, NamesTheFolderThatRefuses) {
    const TempFolder folder;
    EXPECT_THAT(RefusalIn(folder / "none"), testing::Pair(76, HasSubstr(folder / "none")));
    EXPECT_EQ(RefusalIn(folder.Put("file", "")).first, 76);
    EXPECT_EQ(RefusalIn(folder.Path(), std::string(255, 'x')).first, 75);
    EXPECT_THAT(folder.Names(), ElementsAre("file"));
    EXPECT_EQ(InOtherProcess([&] {
                  ::chmod(folder.Path().c_str(), 0500);
                  if (::geteuid() == 0 && ::seteuid(65534) != 0) return 0;
                  return static_cast<int>(RefusalIn(folder.Path()).first);
              }),
              75);
}

TEST(UtilityNames, ReportsAFullDisk) {
    const TempFolder folder;
    const int number = InOtherProcess([&] {
        const int spaces = ::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
        if (::unshare(spaces) != 0) return 255;
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
        if (::mount("tmpfs", folder.Path().c_str(), "tmpfs", 0, "nr_inodes=3") != 0) return 255;
        for (int i = 0; i < 5; ++i) folder.Put("file" + std::to_string(i), "");
        return static_cast<int>(RefusalIn(folder.Path()).first);
    });
    if (number == 255) GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(number, 61);
}

}  // namespace
}  // namespace orvo::utility
