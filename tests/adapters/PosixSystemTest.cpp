// The registry file's format, local time and the kernel's release.
#include <gtest/gtest.h>

#include <ctime>

#include "platform/posix/Clock.h"
#include "platform/posix/OperatingSystem.h"
#include "platform/posix/RegistryFile.h"
#include "tests/Variable.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::posix {
namespace {

using std::string_literals::operator""s;

constexpr const char* kShellFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr const char* kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";

/// As a file of two-byte units begins and goes on.
std::string Utf16(const std::u16string& text) {
    const std::u16string marked = u'\uFEFF' + text;
    return {reinterpret_cast<const char*>(marked.data()), 2 * marked.size()};
}

/// "type:bytes" of a value; "none" where key or value is missing.
std::string Read(IRegistry& registry, const std::string& key, const std::string& name) {
    Long handle = 0;
    Long type = 0;
    Long size = 0;
    if (registry.RegOpenKey(IRegistry::kCurrentUser, key, handle) != 0) return "none";
    if (registry.RegQueryValueEx(handle, name, type, nullptr, size) != 0) return "none";
    std::string data(static_cast<std::size_t>(size), '?');
    registry.RegQueryValueEx(handle, name, type, data.data(), size);
    return std::to_string(type) + ":" + data;
}

std::string ReadFrom(const std::string& content, const std::string& name) {
    const TempFolder folder;
    RegistryFile registry(folder.Put("r.reg", content));
    return Read(registry, "Software\\X", name);
}

TEST(PosixRegistry, ReadsEveryKindOfValue) {
    const std::string content = kHeader +
                                "; a comment\r\n[HKEY_CURRENT_USER\\Software\\X]\r\n"
                                "@=\"default\"\r\n"
                                "\"Path \\\\ \\\"quoted\\\"\"=\"C:\\\\Users\\\\J\\\"x\\\"=y\"\r\n"
                                "\"empty\"=\"\"\r\n"
                                "\"bytes\"=hex:ff,00\r\n"
                                "\"long\"=hex:01,02,\\\r\n  03,04,\\\r\n  05\r\n"
                                "\"dword\"=dword:0000abcd\r\n"
                                "\"sz\"=hex(1):41,00,fc,00,00,00\r\n"
                                "\"open\"=hex(1):41,00\r\n"
                                "\"expand\"=hex(2):25,00,61,00,25,00,00,00\r\n"
                                "\"multi\"=hex(7):61,00,00,00,3d,d8,00,de,00,00,00,00\r\n"
                                "\"none\"=hex(0):\r\n"
                                "\"gone\"=\"x\"\r\n\"gone\"=-\r\n"s;
    const std::pair<const char*, std::string> cases[] = {
        {"", "1:default\0"s},     {"Path \\ \"quoted\"", "1:C:\\Users\\J\"x\"=y\0"s},
        {"EMPTY", "1:\0"s},       {"Bytes", "3:\xFF\0"s},
        {"long", "3:\1\2\3\4\5"}, {"dword", "4:\xCD\xAB\0\0"s},
        {"sz", "1:Aü\0"s},        {"open", "1:A"},
        {"expand", "2:%a%\0"s},   {"multi", "7:a\0😀\0\0"s},
        {"none", "0:"},           {"gone", "none"},
    };
    for (const auto& [name, expected] : cases) EXPECT_EQ(ReadFrom(content, name), expected) << name;
}

TEST(PosixRegistry, ReadsEveryEncoding) {
    const std::string section = "[HKEY_CURRENT_USER\\Software\\X]\r\n\"n\"=";
    const std::string wide = Utf16(
        u"Windows Registry Editor Version 5.00\r\n\r\n"
        u"[HKEY_CURRENT_USER\\Software\\X]\r\n\"Größe\"=\"für 😀\"\r\n");
    EXPECT_EQ(ReadFrom(wide, "GRÖßE"), "1:für 😀\0"s);
    EXPECT_EQ(ReadFrom(wide, "GRÖSSE"), "none");
    EXPECT_EQ(ReadFrom("\xEF\xBB\xBF" + (kHeader + section) + "\"für\"", "n"), "1:für\0"s);
    EXPECT_EQ(ReadFrom("REGEDIT4\n\n" + section + "\"f\xFCr\"", "n"), "1:für\0"s);
    EXPECT_EQ(ReadFrom("REGEDIT4\n\n" + section + "hex(1):66,fc,00", "n"), "1:fü\0"s);
}

TEST(PosixRegistry, GivesWhatIsReadableOfABrokenFile) {
    const std::string broken =
        kHeader +
        "\"before\"=\"any key\"\n[HKEY_CURRENT_USER\\Software\\X]\n\"a\"=\"unfinished\n\"b\"=hex:0g\n\"c\n=\n"
        "\"d\"=dword:\n\"e\"\n\"f\"=hex(zz):00\n\"good\"=\"yes\"\n[HKEY_CURRENT_USER\\Software\\Y\n"
        "\"good\"=\"other\"\n\"last\"=hex:01,\\"s;
    for (const char* name : {"before", "a", "b", "c", "d", "e", "f", "last"}) {
        EXPECT_EQ(ReadFrom(broken, name), "none") << name;
    }
    EXPECT_EQ(ReadFrom(broken, "good"), "1:yes\0"s);
}

TEST(PosixRegistry, FindsKeysInAnyCaseAndForgetsRemovedOnes) {
    const TempFolder folder;
    RegistryFile registry(folder.Put(
        "r.reg", kHeader +
                     "[HKEY_CURRENT_USER\\A\\B\\C]\n\"v\"=\"1\"\n[HKEY_CURRENT_USER\\A\\BB]\n\"v\"=\"2\"\n"
                     "[HKEY_CURRENT_USER\\D]\n\"v\"=\"3\"\n[-HKEY_CURRENT_USER\\a\\b]\n"s));
    EXPECT_EQ(Read(registry, "A\\B\\C", "v"), "none");
    EXPECT_EQ(Read(registry, "a\\bb\\", "V"), "1:2\0"s);
    Long above = 0;
    Long below = 0;
    ASSERT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, "A", above), 0);
    EXPECT_EQ(registry.RegOpenKey(above, "B", below), 2);
    EXPECT_EQ(registry.RegOpenKey(above, "BB", below), 0);
    EXPECT_EQ(registry.RegOpenKey(static_cast<Long>(0x80000002U), "A", below), 2);
}

TEST(PosixRegistry, FallsBackToTheDataFolder) {
    const TempFolder folder;
    const Variable data("XDG_DATA_HOME", "/data/of user");
    RegistryFile missing(folder / "none.reg");
    EXPECT_EQ(Read(missing, kShellFolders, "AppData"), "1:/data/of user\0"s);
    EXPECT_EQ(Read(missing, "Software\\Other", "AppData"), "none");
    RegistryFile own(folder.Put(
        "r.reg", kHeader + "[HKEY_CURRENT_USER\\"s + kShellFolders + "]\n\"appdata\"=\"C:\\\\Own\"\n"));
    EXPECT_EQ(Read(own, kShellFolders, "AppData"), "1:C:\\Own\0"s);
    const Variable relative("XDG_DATA_HOME", "relative");
    const Variable home("HOME", "/home/someone");
    const Variable config("XDG_CONFIG_HOME", "");
    RegistryFile byHome(folder / "none.reg");
    EXPECT_EQ(Read(byHome, kShellFolders, "AppData"), "1:/home/someone/.local/share\0"s);
    EXPECT_EQ(RegistryFile::DefaultPath(), "/home/someone/.config/orvo_tile/registry.reg");
}

TEST(PosixClock, TellsLocalTime) {
    {
        const Variable zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        Clock clock;
        const LocalTime summer = clock.Local(1720000000);  // 2024-07-03 09:46:40 UTC
        EXPECT_EQ(summer.year * 10000 + summer.month * 100 + summer.day, 20240703);
        EXPECT_EQ(summer.hour * 10000 + summer.minute * 100 + summer.second, 114640);
    }
    ::tzset();
}

TEST(PosixOperatingSystem, ReadsTheRelease) {
    for (const auto& [release, major, minor, build] : {std::tuple("6.1.0-18-amd64", 6, 1, 0),
                                                       {"5.15.146.1-custom", 5, 15, 146},
                                                       {"6.8-rc1", 6, 8, 0},
                                                       {"strange", 0, 0, 0}}) {
        const OSVersion version = VersionOfRelease(release);
        EXPECT_EQ(std::tuple(version.major, version.minor, version.build), std::tuple(major, minor, build));
    }
    const OSVersion own = OperatingSystem().GetVersion();
    EXPECT_EQ(own.platformId, 4);
    EXPECT_GE(own.major, 2);
}

}  // namespace
}  // namespace orvo::posix
