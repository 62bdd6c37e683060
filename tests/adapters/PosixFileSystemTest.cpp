// The file-system object on the disk, beyond what every one does.
#include <gtest/gtest.h>

#include "platform/RuntimeError.h"
#include "platform/posix/FileSystem.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::posix {
namespace {

TEST(PosixFileSystem, RootsHaveNeitherNameNorParent) {
    FileSystem files;
    for (const char* root : {"/", "\\", "C:\\", "c:/", "//"}) {
        SCOPED_TRACE(root);
        EXPECT_EQ(files.GetParentFolderName(root), "");
        EXPECT_EQ(files.GetFileName(root), "");
    }
    EXPECT_EQ(files.GetParentFolderName("C:\\\\x"), "C:\\\\");
    EXPECT_EQ(files.GetParentFolderName("a//b"), "a");
}

TEST(PosixFileSystem, ResolvesPathsInTheText) {
    FileSystem files;
    const std::string current = std::filesystem::current_path().string();
    const std::pair<std::string, std::string> cases[] = {
        {"/a/./b/../c", "/a/c"},
        {"/a\\b\\..\\c\\", "/a\\c"},
        {"/../..", "/"},
        {"C:\\x\\..\\..\\y", "C:\\y"},
        {"/a//b", "/a/b"},
        {"", current},
        {".", current},
        {"x\\y", current + "/x\\y"},
        {"x/../z..", current + "/z.."},
    };
    for (const auto& [path, expected] : cases) EXPECT_EQ(files.GetAbsolutePathName(path), expected) << path;
}

TEST(PosixFileSystem, NeverDeletesFolders) {
    const TempFolder folder;
    FileSystem files;
    std::filesystem::create_directory(folder / "sub");
    std::filesystem::create_directory_symlink(folder / "sub", folder / "link");
    for (const char* name : {"sub", "sub/", "link"}) {
        try {
            files.DeleteFile(folder / name, true);
            ADD_FAILURE() << name;
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), 70) << name;
        }
    }
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"link", "sub"}));
}

}  // namespace
}  // namespace orvo::posix
