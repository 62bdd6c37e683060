// What the file-system object on the disk does beyond its contract.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/FileSystem.h"
#include "tests/Failure.h"
#include "tests/adapters/TempFolder.h"

namespace orvo {
namespace {

TEST(PosixFileSystem, NeverDeletesFolders) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "sub");
    std::filesystem::create_directory_symlink(folder / "sub", folder / "link");
    for (const char* name : {"sub", "sub/", "link"})
        EXPECT_EQ(NumberOf([&] { posix::FileSystem().DeleteFile(folder / name, true); }), 70) << name;
    EXPECT_THAT(folder.Names(), testing::ElementsAre("link", "sub"));
}

TEST(PosixFileSystem, ResolvesPathsInTheText) {
    const std::string current = std::filesystem::current_path().string();
    for (const auto& [path, expected] : {std::pair<std::string, std::string>("/a/./b/../c", "/a/c"),
                                         {"/a\\b\\..\\c\\", "/a\\c"},
                                         {"/../..", "/"},
                                         {"C:\\x\\..\\..\\y", "C:\\y"},
                                         {"", current},
                                         {"x/../z..", current + "/z.."}})
        EXPECT_EQ(posix::FileSystem().GetAbsolutePathName(path), expected) << path;
    EXPECT_EQ(posix::FileSystem().GetParentFolderName("C:\\\\x"), "C:\\\\");
    EXPECT_EQ(posix::FileSystem().GetParentFolderName("a//b"), "a");
}

}  // namespace
}  // namespace orvo
