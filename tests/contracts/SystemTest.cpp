// Registry and text files.
#include "tests/contracts/Contract.h"

namespace orvo {
namespace {

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
