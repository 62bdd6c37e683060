// Free names on the disk: reservations, several processes, folders that refuse.
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include "platform/utility/UtilTools.h"
#include "tests/Failure.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::utility {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// What asking for a name fails with.
std::string RefusalIn(const std::string& folder, const std::string& extension = "png") {
    return FailureOf(
        [&] { UtilTools(std::make_shared<SharedState>(), {}).GetFreeFileName(folder, "i", {extension}); });
}

/// Runs a check in a process of its own; what it returns must be below 256.
int InOtherProcess(const std::function<int()>& check) {
    const pid_t pid = ::fork();
    if (pid == 0) ::_exit(check());
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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

TEST(UtilityNames, NamesTheFolderThatRefusesAndTheDiskThatIsFull) {
    const TempFolder folder;
    EXPECT_THAT(RefusalIn(folder / "none"), AllOf(StartsWith("76 "), HasSubstr(folder / "none")));
    EXPECT_THAT(RefusalIn(folder.Put("file", "")), StartsWith("76 "));
    EXPECT_THAT(RefusalIn(folder.Path(), std::string(255, 'x')), StartsWith("75 "));
    EXPECT_THAT(folder.Names(), ElementsAre("file"));
    EXPECT_EQ(InOtherProcess([&] {
                  ::chmod(folder.Path().c_str(), 0500);
                  if (::geteuid() == 0 && ::seteuid(65534) != 0) return 0;
                  return std::stoi(RefusalIn(folder.Path()));
              }),
              75);
    const int number = InOtherProcess([&] {
        const int spaces = ::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
        if (::unshare(spaces) != 0) return 255;
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
        if (::mount("tmpfs", folder.Path().c_str(), "tmpfs", 0, "nr_inodes=3") != 0) return 255;
        for (int i = 0; i < 5; ++i) folder.Put("file" + std::to_string(i), "");
        return std::stoi(RefusalIn(folder.Path()));
    });
    if (number == 255) GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(number, 61);
}

}  // namespace
}  // namespace orvo::utility
