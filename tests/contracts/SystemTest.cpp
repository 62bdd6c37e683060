// Registry and text files.
#include "tests/contracts/Contract.h"

namespace orvo {
namespace {

using SystemContract = Contract;
ORVO_CONTRACT(SystemContract);

TEST_P(SystemContract, RegistryReadsATextAndAnswersWithTheSystemsCodes) {
    IRegistry& registry = *services.registry;
    constexpr Long kNoHandle = 0x7FFFFFF0;
    Long key = kNoHandle, type = 0, size = 0;
    EXPECT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, "Software\\Nobody", key), 2);
    EXPECT_EQ(key, kNoHandle);
    EXPECT_EQ(registry.RegQueryValueEx(kNoHandle, subject.registryName, type, nullptr, size), 6);
    EXPECT_EQ(registry.RegCloseKey(kNoHandle), 6);
    ASSERT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, subject.registryKey, key), 0);
    EXPECT_EQ(registry.RegQueryValueEx(key, "None", type, nullptr, size), 2);
    const auto read = [&](char* data, Long room) {
        size = room;
        return registry.RegQueryValueEx(key, subject.registryName, type, data, size);
    };
    EXPECT_EQ(read(nullptr, 0), 0);
    EXPECT_EQ(type, IRegistry::kTypeString);
    EXPECT_EQ(size, 7);
    std::string text(10, '?');
    EXPECT_EQ(read(text.data(), 1), 234);
    EXPECT_EQ(size, 7);
    EXPECT_EQ(text[0], '?');
    EXPECT_EQ(read(text.data(), 10), 0);
    EXPECT_EQ(text.substr(0, static_cast<std::size_t>(size)), std::string("/Grün\0", 7));
    EXPECT_EQ(registry.RegCloseKey(key), 0);
    EXPECT_EQ(registry.RegCloseKey(key), 6);
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
    EXPECT_TRUE(files.Exists(file));
    EXPECT_FALSE(files.Exists(subject.folder));
    EXPECT_EQ(NumberOf([&] { files.Append(subject.folder + "\\nowhere\\x", "t"); }), 76);
    EXPECT_EQ(NumberOf([&] { files.Replace(subject.folder + "\\nowhere\\x", "t"); }), 76);
}

}  // namespace
}  // namespace orvo
