// The desktop where nobody looks at it: clipboard, printer, answers by policy.
#include <gtest/gtest.h>

#include "platform/windows/Platform.h"
#include "platform/windows/desktop/Desktop.h"
#include "platform/windows/system/WideText.h"
#include "tests/Failure.h"

namespace orvo {
namespace {

class Dialog final : public IDialogEvents {
  public:
    std::string heard;
    const Form& Controls() const override { return form_; }
    void Form_Activate() override {
        heard += "a";
        throw RuntimeError(Fault::DeviceIOError);  // must not keep the choice from being made
    }
    void cmdContinue_Click(Integer index) override { heard += std::to_string(index); }
    void cmdProtocol_Click(Integer) override { heard += "p"; }

  private:
    Form form_{{"Form", {{"Caption", "t"}}}, 1000, 1000, {}};
};

void CheckPolicy(windows::Desktop& desktop) {
    using Answer = MessageAnswer;
    for (const auto& [policy, heard] : {std::pair{L"next", "a1"}, std::pair{L"leave", "a2"}}) {
        ::SetEnvironmentVariableW(windows::kOnErrorVariable, policy);
        Dialog dialog;
        desktop.ShowModal(dialog);
        EXPECT_EQ(dialog.heard, heard);
        EXPECT_EQ(desktop.MessageBox("t", "", MessageIcon::Critical, MessageButtons::OK), Answer::OK);
        EXPECT_EQ(desktop.MessageBox("t", "", MessageIcon::None, MessageButtons::YesNo), Answer::No);
    }
    ::SetEnvironmentVariableW(windows::kOnErrorVariable, L"ask");
    Dialog unseen;  // there is no screen here
    desktop.ShowModal(unseen);
    EXPECT_EQ(unseen.heard, "a2");
}

void CheckClipboard(windows::Desktop& desktop) {
    desktop.CopyToClipboard("Grüße\r\n\"€\"");
    ::OpenClipboard(nullptr);
    const HANDLE text = ::GetClipboardData(CF_UNICODETEXT);
    EXPECT_EQ(windows::Utf8(static_cast<const wchar_t*>(::GlobalLock(text))), "Grüße\r\n\"€\"");
    ::GlobalUnlock(text);
    ::CloseClipboard();
}

TEST(WindowsDesktop, ServesWhereNobodyLooks) {
    windows::Desktop desktop;
    CheckPolicy(desktop);
    CheckClipboard(desktop);
    EXPECT_EQ(NumberOf([&] { desktop.Print({"line"}); }), 482);
}

}  // namespace
}  // namespace orvo
