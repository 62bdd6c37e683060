#include "platform/windows/Platform.h"
#include "platform/windows/desktop/Desktop.h"
#include "platform/windows/system/WideText.h"
#include "tests/contracts/DesktopContract.h"

namespace orvo {
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
