#include <fstream>

#include "platform/windows/Platform.h"
#include "platform/windows/desktop/Desktop.h"
#include "platform/windows/imaging/Image.h"
#include "platform/windows/imaging/RasterFile.h"
#include "platform/windows/system/WideText.h"
#include "support/SystemPath.h"
#include "tests/adapters/TempFolder.h"
#include "tests/contracts/Contract.h"
#include "tests/contracts/DesktopContract.h"
#include "tests/windows/Self.h"

namespace orvo {
namespace {

constexpr const wchar_t* kKey = L"Software\\OrvoContract";

struct World {
    TempFolder folder{"Orvo Käse ☕"};
    World() {
        ::RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"Text", REG_SZ, L"/Gr\x00FCn", 12);
        ::SetEnvironmentVariableW(windows::kLanguageVariable, L"fr");
    }
    ~World() {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
        ::SetEnvironmentVariableW(windows::kLanguageVariable, nullptr);
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;
};

}  // namespace

Subject MakeSystemSubject() {
    auto world = std::make_shared<World>();
    const std::string source = world->folder / "source.png";
    windows::WriteImage(source, windows::ImageFormat::Png, {windows::Pixels::Kind::Bgr, 40, 30}, 0);
    world->folder.Put("source.pgw", "2\n0\n0\n-3\n1001\n4998.5\n");
    return {.system = "Windows",
            .services = windows::MakePlatform(),
            .folder = world->folder.Path(),
            .source = source,
            .format = "PNG",
            .program = Self(),
            .registryKey = "Software\\OrvoContract",
            .registryName = "Text",
            .openSource = [=] { return windows::OpenRasterFile(source); },
            .contentOf = ReadFile,
            .makeReadOnly =
                [](const std::string& path) {
                    std::filesystem::permissions(DiskPath(path), std::filesystem::perms::owner_read);
                },
            .world = world};
}

namespace {

/// Nobody looks at it.
class WindowsSubject {
  public:
    explicit WindowsSubject(fake::World& /*world*/) {}
    WindowsSubject(const WindowsSubject&) = delete;
    WindowsSubject& operator=(const WindowsSubject&) = delete;
    ~WindowsSubject() { ::SetEnvironmentVariableW(windows::kOnErrorVariable, nullptr); }
    static std::shared_ptr<IDesktop> Desktop() { return std::make_shared<windows::Desktop>(); }
    static bool ClipboardHolds(const std::string& text) {
        if (::OpenClipboard(nullptr) == 0) return false;
        const HANDLE memory = ::GetClipboardData(CF_UNICODETEXT);
        const auto* const held = static_cast<const wchar_t*>(::GlobalLock(memory));
        const bool same = held != nullptr && windows::Utf8(held) == text;
        ::GlobalUnlock(memory);
        ::CloseClipboard();
        return same;
    }
    static std::vector<Unattended> WithoutUser() {
        const auto with = [](const wchar_t* policy) {
            return [=] {
                ::SetEnvironmentVariableW(windows::kOnErrorVariable, policy);
                return Desktop();
            };
        };
        return {{with(L"next"), true}, {with(L"leave"), false}, {with(L"ask"), false}};
    }
    static constexpr Long kPrinting = 482;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Windows, DesktopContract, WindowsSubject);

}  // namespace

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(AttendedDesktop);  // nobody attends here

}  // namespace orvo
