// What every file-system object does, in memory and on the disk.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "platform/RuntimeError.h"
#include "platform/fake/World.h"
#include "platform/posix/FileSystem.h"
#include "support/SystemPath.h"
#include "tests/adapters/TempFolder.h"

namespace orvo {
namespace {

struct Disk {
    std::shared_ptr<IFileSystemObject> files;
    std::string folder;
    std::function<void(const std::string&)> put;
    std::function<void(const std::string&)> makeReadOnly;
    std::shared_ptr<void> behind;
};

Disk RealDisk() {
    const auto folder = std::make_shared<TempFolder>();
    return {std::make_shared<posix::FileSystem>(), folder->Path(),
            [](const std::string& path) { std::ofstream(SystemPath(path)) << "x"; },
            [](const std::string& path) {
                std::filesystem::permissions(SystemPath(path), std::filesystem::perms::owner_read);
            },
            folder};
}

Disk FakeDisk() {
    const auto world = fake::World::Make();
    return {world->MakePlatform().newFileSystemObject(), "C:\\out",
            [world](const std::string& path) { world->PutFile(path, "x"); },
            [world](const std::string& path) { world->readOnlyFiles.insert(fake::World::Normal(path)); },
            world};
}

Long FailureOfDelete(IFileSystemObject& files, const std::string& path, bool force) {
    try {
        files.DeleteFile(path, force);
    } catch (const RuntimeError& error) {
        return error.Number();
    }
    return 0;
}

class FileSystemContract : public testing::TestWithParam<Disk (*)()> {
  protected:
    const Disk disk = GetParam()();
    IFileSystemObject& files = *disk.files;
};

INSTANTIATE_TEST_SUITE_P(All, FileSystemContract, testing::Values(&RealDisk, &FakeDisk),
                         [](const auto& param) { return param.index == 0 ? "Real" : "Fake"; });

TEST_P(FileSystemContract, SplitsNames) {
    struct Case {
        const char *path, *parent, *name, *base, *extension;
    };
    const Case cases[] = {
        {"C:\\out\\i142507_1.png", "C:\\out", "i142507_1.png", "i142507_1", "png"},
        {"/out/i142507_1.png", "/out", "i142507_1.png", "i142507_1", "png"},
        {"a/b\\c.tar.gz", "a/b", "c.tar.gz", "c.tar", "gz"},
        {"a\\b\\", "a", "b", "b", ""},
        {"a\\b.c/", "a", "b.c", "b", "c"},
        {"/x", "/", "x", "x", ""},
        {"C:\\x", "C:\\", "x", "x", ""},
        {"name", "", "name", "name", ""},
        {"/h/.profile", "/h", ".profile", "", "profile"},
        {"/h/ends.", "/h", "ends.", "ends", ""},
        {"/some.folder/plain", "/some.folder", "plain", "plain", ""},
        {"/Tür zu/ä.TIF", "/Tür zu", "ä.TIF", "ä", "TIF"},
        {"C:\\", "", "", "", ""},
        {"/", "", "", "", ""},
        {"\\", "", "", "", ""},
        {"c:/", "", "", "", ""},
        {"//", "", "", "", ""},
        {"", "", "", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(files.GetParentFolderName(c.path), c.parent);
        EXPECT_EQ(files.GetFileName(c.path), c.name);
        EXPECT_EQ(files.GetBaseName(c.path), c.base);
        EXPECT_EQ(files.GetExtensionName(c.path), c.extension);
    }
}

TEST_P(FileSystemContract, TakesBothSeparators) {
    disk.put(disk.folder + "/a b.png");
    EXPECT_TRUE(files.FileExists(disk.folder + "/a b.png"));
    EXPECT_TRUE(files.FileExists(disk.folder + "\\a b.png"));
    EXPECT_FALSE(files.FileExists(disk.folder + "\\a b.pn"));
    EXPECT_FALSE(files.FileExists(disk.folder));
    EXPECT_TRUE(files.FolderExists(disk.folder));
    EXPECT_TRUE(files.FolderExists(disk.folder + "\\"));
    EXPECT_FALSE(files.FolderExists(disk.folder + "\\a b.png"));
}

TEST_P(FileSystemContract, DeletesWhatItMay) {
    const std::string file = disk.folder + "\\a.tif";
    EXPECT_EQ(FailureOfDelete(files, file, true), 53);
    disk.put(file);
    disk.put(disk.folder + "\\b.tif");
    disk.makeReadOnly(file);
    EXPECT_EQ(FailureOfDelete(files, file, false), 70);
    EXPECT_TRUE(files.FileExists(file));
    EXPECT_EQ(FailureOfDelete(files, disk.folder + "\\*.tif", true), 53);
    EXPECT_EQ(FailureOfDelete(files, file, true), 0);
    EXPECT_FALSE(files.FileExists(file));
    EXPECT_TRUE(files.FileExists(disk.folder + "\\b.tif"));
}

TEST(PosixFileSystem, NeverDeletesFolders) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "sub");
    std::filesystem::create_directory_symlink(folder / "sub", folder / "link");
    for (const char* name : {"sub", "sub/", "link"})
        EXPECT_EQ(FailureOfDelete(*RealDisk().files, folder / name, true), 70) << name;
    EXPECT_THAT(folder.Names(), testing::ElementsAre("link", "sub"));
}

TEST(PosixFileSystem, ResolvesPathsInTheText) {
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
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(posix::FileSystem().GetAbsolutePathName(path), expected) << path;
    EXPECT_EQ(posix::FileSystem().GetParentFolderName("C:\\\\x"), "C:\\\\");
    EXPECT_EQ(posix::FileSystem().GetParentFolderName("a//b"), "a");
}

}  // namespace
}  // namespace orvo
