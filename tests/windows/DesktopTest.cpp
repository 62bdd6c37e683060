// The desktop where nobody looks at it: answers by policy, clipboard, printer.
#include "platform/windows/Platform.h"
#include "platform/windows/desktop/Desktop.h"
#include "platform/windows/system/WideText.h"
#include "tests/Failure.h"
#include "tests/contracts/DesktopContract.h"

namespace orvo {
namespace {

DesktopSubject WindowsDesktop() {
    return {std::make_shared<windows::Desktop>(), {}, {}, [](dialog::Policy policy) {
                ::SetEnvironmentVariableW(windows::kOnErrorVariable,
                                          policy == dialog::Policy::Next ? L"next" : L"leave");
            }};
}

INSTANTIATE_TEST_SUITE_P(Windows, UnaskedDesktopContract, testing::Values(&WindowsDesktop));

TEST(WindowsDesktop, ServesWithoutAScreen) {
    windows::Desktop desktop;
    ::SetEnvironmentVariableW(windows::kOnErrorVariable, L"ask");
    NotingDialog unseen;
    desktop.ShowModal(unseen);
    EXPECT_EQ(unseen.heard, "a2");
    EXPECT_EQ(NumberOf([&] { desktop.Print({"line"}); }), 482);
    desktop.CopyToClipboard("Grüße\r\n\"€\"");
    ::OpenClipboard(nullptr);
    const HANDLE text = ::GetClipboardData(CF_UNICODETEXT);
    EXPECT_EQ(windows::Utf8(static_cast<const wchar_t*>(::GlobalLock(text))), "Grüße\r\n\"€\"");
    ::GlobalUnlock(text);
    ::CloseClipboard();
}

}  // namespace
}  // namespace orvo
