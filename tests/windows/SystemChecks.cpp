// The operating system's services.
#include <array>
#include <fstream>
#include <thread>

#include "platform/windows/Platform.h"
#include "platform/windows/system/ProcessRunner.h"
#include "platform/windows/system/Win32.h"
#include "support/SystemPath.h"
#include "tests/windows/Checks.h"

namespace orvo::checks {
namespace {

constexpr int kLines = 200;

std::string ContentOf(const std::string& file) {
    std::ifstream stream(DiskPath(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void CheckRegistry(IRegistry& registry) {
    constexpr const wchar_t* kKey = L"Software\\OrvoChecks";
    ::RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"Text", REG_SZ, L"C:\\\x00C4pfel", 18);
    Long key = 77;
    Equal(registry.RegOpenKey(IRegistry::kCurrentUser, "Software\\OrvoNothing", key), 2);
    Equal(key, 77);
    Equal(registry.RegOpenKey(IRegistry::kCurrentUser, "Software\\OrvoChecks", key), 0);
    Long type = 0, size = 0;
    Equal(registry.RegQueryValueEx(key, "Text", type, nullptr, size), 0);
    Check(type == 1 && size == 10, "one letter takes two bytes");
    std::string text(10, '?');
    Equal(registry.RegQueryValueEx(key, "Text", type, text.data(), size), 0);
    Equal(text, std::string("C:\\Äpfel\0", 10));
    size = 2;
    Equal(registry.RegQueryValueEx(key, "Text", type, text.data(), size), 234);
    Equal(size, 10);
    Equal(registry.RegQueryValueEx(key, "None", type, nullptr, size), 2);
    Equal(registry.RegCloseKey(key), 0);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
}

void CheckClock(IClock& clock, IOperatingSystem& system) {
    SYSTEMTIME before{}, after{};
    ::GetLocalTime(&before);
    const LocalTime now = clock.Local(clock.Seconds());
    ::GetLocalTime(&after);
    Check(now.year == before.wYear && now.month == before.wMonth);
    Check(now.second == before.wSecond || now.second == after.wSecond);
    Equal(system.GetVersion().platformId, 2);
    Check(system.GetVersion().major >= 5 && system.GetVersion().build > 0);
    ::SetEnvironmentVariableW(L"TEMP", L"C:\\T\x00E9mp");
    Equal(system.TempFolder(), "C:\\Témp");
    ::SetEnvironmentVariableW(L"TEMP", nullptr);
    Equal(system.TempFolder(), "");
}

void CheckFiles(ITextFiles& files, IFileSystemObject& objects) {
    const Folder folder(u8"Orvo Käse ☕");
    const std::string file = folder.File("log ☕.EPT");
    files.Append(file, "Grüße\r\n");
    files.Append(file, "zwei\r\n");
    Equal(ContentOf(file), "Grüße\r\nzwei\r\n");
    files.Replace(file, "neu\r\n");
    const std::string replaced = ContentOf(file);
    {
        const std::ifstream held(DiskPath(file));  // its reader does not let it be renamed or removed
        files.Replace(file, "x");
    }
    Equal(replaced + ContentOf(file), "neu\r\nx");
    Fails(76, "nowhere", [&] { files.Append(folder.File("nowhere\\x"), "t"); });
    Equal(folder.Entries(), 1);
    Check(objects.FileExists(file) && !objects.FileExists(folder.Path()) && files.Exists(file) &&
          !files.Exists(folder.Path()));
    Equal(objects.GetBaseName(file) + "|" + objects.GetExtensionName(file), "log ☕|EPT");
    Equal(objects.GetParentFolderName(file), folder.Path());
    Equal(objects.GetAbsolutePathName("C:\\a\\..\\b.tif"), "C:\\b.tif");
    ::SetFileAttributesW(DiskPath(file).c_str(), FILE_ATTRIBUTE_READONLY);
    Fails(70, "", [&] { objects.DeleteFile(file, false); });
    objects.DeleteFile(file, true);
    Fails(53, "", [&] { objects.DeleteFile(file, true); });

    windows::ProcessRunner runner;
    const auto append = [&](const std::string& letter) {
        runner.Run(Self(), {"--append", letter}, folder.Path(), [] { return false; });
    };
    std::thread other(append, "a");
    append("b");
    other.join();
    std::ifstream stream(DiskPath(folder.File("shared.txt")));
    int whole = 0;
    for (std::string line; std::getline(stream, line);)
        whole += line == std::string(99, 'a') || line == std::string(99, 'b') ? 1 : 0;
    Equal(whole, 2 * kLines);
}

void CheckPrograms() {
    const Folder folder(u8"Orvo ranä");
    windows::ProcessRunner runner;
    const std::vector<std::string> arguments{"--echo", "a b", "", "c\\", "d\"e\\\"f", "g\\ h\\", "-x=1"};
    const ProcessResult echo = runner.Run(Self(), arguments, folder.Path(), [] { return false; });
    Check(echo.started && echo.exitCode == 3);
    Equal(echo.output, "[a b]\n[]\n[c\\]\n[d\"e\\\"f]\n[g\\ h\\]\n[-x=1]");
    Check(!runner.Run("no-such-program", {}, folder.Path(), [] { return false; }).started);
    const ProcessResult ended = runner.Run(Self(), {"--wait"}, folder.Path(), [] { return true; });
    Check(ended.started && ended.exitCode == 1, "ended once interrupted");
    const ProcessResult left = runner.Start(Self(), {"--echo"}, std::chrono::seconds(20));
    Equal(left.exitCode, 3);
}

}  // namespace

void CheckSystem() {
    const auto platform = windows::MakePlatform();
    CheckRegistry(*platform.registry);
    CheckFiles(*platform.textFiles, *platform.newFileSystemObject());
    CheckPrograms();
    CheckClock(*platform.clock, *platform.operatingSystem);
}

std::string Self() {
    std::array<wchar_t, 1024> path{};
    ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return PathText(std::filesystem::path(path.data()));
}

int ServeChecks(int count, char** arguments) {
    constexpr int kExitCode = 3;
    constexpr DWORD kLong = 30'000;
    const std::string order = arguments[1];
    if (order == "--append") {
        const auto files = windows::MakePlatform().textFiles;
        const std::string path = PathText(std::filesystem::current_path() / "shared.txt");
        for (int i = 0; i < kLines; ++i) files->Append(path, std::string(99, *arguments[2]) + "\r\n");
        return 0;
    }
    if (order == "--wait") ::Sleep(kLong);
    if (order.starts_with("./")) {  // as a converter: SOURCE TARGET QUALITY
        std::error_code refused;
        std::filesystem::copy_file(arguments[1], arguments[2], refused);
        return refused || count != 4 ? 1 : 0;
    }
    for (int i = 2; i < count; ++i) std::cout << '[' << arguments[i] << "]\n";
    return kExitCode;
}

}  // namespace orvo::checks
