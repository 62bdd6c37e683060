// The file-system object, registry and text files.
#include "tests/contracts/Contract.h"

namespace orvo {
namespace {

struct FileSystemContract : Contract {
    const std::shared_ptr<IFileSystemObject> object = services.newFileSystemObject();
    IFileSystemObject& files = *object;
};

ORVO_CONTRACT(FileSystemContract);

TEST_P(FileSystemContract, SplitsNames) {
    // The last cell is the system whose object looks for "\\" alone in such a path.
    for (const char* row :
         {"C:\\out\\i142507_1.png|C:\\out|i142507_1.png|i142507_1|png|",
          "/out/i142507_1.png|/out|i142507_1.png|i142507_1|png|", "a/b\\c.tar.gz|a/b|c.tar.gz|c.tar|gz|",
          "a\\b\\|a|b|b||", "a\\b.c/|a|b.c|b|c|Windows", "/x|/|x|x||Windows", "C:\\x|C:\\|x|x||",
          "name||name|name||", "/h/.profile|/h|.profile||profile|",
          "/some.folder/plain|/some.folder|plain|plain||Windows", "/Tür zu/ä.TIF|/Tür zu|ä.TIF|ä|TIF|",
          "C:\\|||||", "/|||||", "c:/|||||", "|||||"}) {
        const auto cells = Cells(row);
        const std::string& path = cells[0];
        if (cells[5] == subject.system) continue;
        EXPECT_EQ(files.GetParentFolderName(path), cells[1]) << path;
        EXPECT_EQ(files.GetFileName(path), cells[2]) << path;
        EXPECT_EQ(files.GetBaseName(path), cells[3]) << path;
        EXPECT_EQ(files.GetExtensionName(path), cells[4]) << path;
    }
}

TEST_P(FileSystemContract, TakesBothSeparators) {
    const std::string& folder = subject.folder;
    services.textFiles->Append(folder + "/a b.png", "x");
    for (const std::string separator : {"/", "\\"}) {
        EXPECT_TRUE(files.FileExists(folder + separator + "a b.png"));
        EXPECT_FALSE(files.FileExists(folder + separator + "a b.pn"));
        EXPECT_TRUE(files.FolderExists(folder + separator));
        EXPECT_FALSE(files.FolderExists(folder + separator + "a b.png"));
    }
    EXPECT_FALSE(files.FileExists(folder));
}

TEST_P(FileSystemContract, DeletesWhatItMay) {
    const std::string file = subject.folder + "\\a.tif", other = subject.folder + "\\b.tif";
    const auto failure = [&](const std::string& path, bool force) {
        return NumberOf([&] { files.DeleteFile(path, force); });
    };
    EXPECT_EQ(failure(file, true), 53);
    services.textFiles->Append(file, "x");
    services.textFiles->Append(other, "x");
    subject.makeReadOnly(file);
    EXPECT_EQ(failure(file, false), 70);
    EXPECT_EQ(failure(file, true), 0);
    EXPECT_FALSE(files.FileExists(file));
    EXPECT_TRUE(files.FileExists(other));
}

using SystemContract = Contract;
ORVO_CONTRACT(SystemContract);

TEST_P(SystemContract, RegistryReadsATextAndAnswersWithTheSystemsCodes) {
    using Longs = std::vector<Long>;
    IRegistry& registry = *services.registry;
    constexpr Long kNoHandle = 0x7FFFFFF0;
    Long key = kNoHandle, type = 0, size = 0;
    std::string text(10, '?');
    const auto open = [&](const std::string& path) {
        return registry.RegOpenKey(IRegistry::kCurrentUser, path, key);
    };
    const auto query = [&](const std::string& name, char* data, Long room) {
        size = room;
        return registry.RegQueryValueEx(key, name, type, data, size);
    };
    const std::string& name = subject.registryName;
    EXPECT_EQ((Longs{open("Software\\Nobody"), query(name, nullptr, 0), registry.RegCloseKey(key), key}),
              (Longs{2, 6, 6, kNoHandle}));
    EXPECT_EQ((Longs{open(subject.registryKey), query("None", nullptr, 0)}), (Longs{0, 2}));
    EXPECT_EQ((Longs{query(name, nullptr, 0), type, size}), (Longs{0, IRegistry::kTypeString, 7}));
    EXPECT_EQ((Longs{query(name, text.data(), 1), size, text[0]}), (Longs{234, 7, '?'}));
    EXPECT_EQ((Longs{query(name, text.data(), 10), size}), (Longs{0, 7}));
    EXPECT_EQ(text.substr(0, 7), std::string("/Grün\0", 7));
    EXPECT_EQ((Longs{registry.RegCloseKey(key), registry.RegCloseKey(key)}), (Longs{0, 6}));
}

TEST_P(SystemContract, TextFilesAppendAndReplaceAsGiven) {
    ITextFiles& files = *services.textFiles;
    const std::string file = subject.folder + "\\log ☕.EPT";
    EXPECT_FALSE(files.Exists(file));
    files.Append(file, "Grüße\r\n");
    files.Append(subject.folder + "/log ☕.EPT", "zwei\n");
    EXPECT_EQ(subject.contentOf(file), "Grüße\r\nzwei\n");
    files.Replace(file, "neu\r\n");
    EXPECT_EQ(subject.contentOf(file), "neu\r\n");
    EXPECT_TRUE(files.Exists(file) && !files.Exists(subject.folder));
    const std::string nowhere = subject.folder + "\\nowhere\\x";
    EXPECT_EQ(NumberOf([&] { files.Append(nowhere, "t"); }) + NumberOf([&] { files.Replace(nowhere, "t"); }),
              76 + 76);
}

}  // namespace
}  // namespace orvo
