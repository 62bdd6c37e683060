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
    virtual ~Disk() = default;
    virtual std::string Folder() = 0;
    virtual void Put(const std::string& path) = 0;
    virtual void MakeReadOnly(const std::string& path) = 0;
    std::shared_ptr<IFileSystemObject> files;
};

struct RealDisk : Disk {
    RealDisk() { files = std::make_shared<posix::FileSystem>(); }
    std::string Folder() override { return folder.Path(); }
    void Put(const std::string& path) override { std::ofstream(SystemPath(path)) << "x"; }
    void MakeReadOnly(const std::string& path) override {
        std::filesystem::permissions(SystemPath(path), std::filesystem::perms::owner_read);
    }
    TempFolder folder;
};

struct FakeDisk : Disk {
    FakeDisk() { files = world->MakePlatform().newFileSystemObject(); }
    std::string Folder() override { return "C:\\out"; }
    void Put(const std::string& path) override { world->PutFile(path, "x"); }
    void MakeReadOnly(const std::string& path) override {
        world->readOnlyFiles.insert(fake::World::Normal(path));
    }
    std::shared_ptr<fake::World> world = fake::World::Make();
};

using MakeDisk = std::unique_ptr<Disk> (*)();

class FileSystemContract : public testing::TestWithParam<MakeDisk> {
  protected:
    Long FailureOfDelete(const std::string& path, bool force) {
        try {
            files.DeleteFile(path, force);
        } catch (const RuntimeError& error) {
            return error.Number();
        }
        return 0;
    }
    std::unique_ptr<Disk> disk = GetParam()();
    IFileSystemObject& files = *disk->files;
};

INSTANTIATE_TEST_SUITE_P(All, FileSystemContract,
                         testing::Values(MakeDisk{[] { return std::unique_ptr<Disk>(new RealDisk); }},
                                         MakeDisk{[] { return std::unique_ptr<Disk>(new FakeDisk); }}),
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
    disk->Put(disk->Folder() + "/a b.png");
    EXPECT_TRUE(files.FileExists(disk->Folder() + "/a b.png"));
    EXPECT_TRUE(files.FileExists(disk->Folder() + "\\a b.png"));
    EXPECT_FALSE(files.FileExists(disk->Folder() + "\\a b.pn"));
    EXPECT_FALSE(files.FileExists(disk->Folder()));
    EXPECT_TRUE(files.FolderExists(disk->Folder()));
    EXPECT_TRUE(files.FolderExists(disk->Folder() + "\\"));
    EXPECT_FALSE(files.FolderExists(disk->Folder() + "\\a b.png"));
}

TEST_P(FileSystemContract, DeletesWhatItMay) {
    const std::string file = disk->Folder() + "\\a.tif";
    EXPECT_EQ(FailureOfDelete(file, true), 53);
    disk->Put(file);
    disk->Put(disk->Folder() + "\\b.tif");
    disk->MakeReadOnly(file);
    EXPECT_EQ(FailureOfDelete(file, false), 70);
    EXPECT_TRUE(files.FileExists(file));
    EXPECT_EQ(FailureOfDelete(disk->Folder() + "\\*.tif", true), 53);
    EXPECT_EQ(FailureOfDelete(file, true), 0);
    EXPECT_FALSE(files.FileExists(file));
    EXPECT_TRUE(files.FileExists(disk->Folder() + "\\b.tif"));
}

}  // namespace
}  // namespace orvo
