// What a person sees and uses on Windows.
#pragma once

#include "platform/dialog/Answers.h"
#include "platform/windows/system/Win32.h"

namespace orvo::windows {

using dialog::Policy;

/// The policy that the environment names now.
Policy CurrentPolicy();

/// Without a screen, and under a policy other than Ask, nothing is shown: failures are answered by the
/// policy, questions with No.
class Desktop final : public IDesktop {
  public:
    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override;
    void ShowModal(IDialogEvents& events) override;
    void Beep() override;
    void ResetPointer() override;
    Box Screen() override;
    void Print(const std::vector<std::string>& lines) override;
    void CopyToClipboard(const std::string& text) override;
    void Open(const std::string& address) override;

  private:
    HWND front_ = nullptr;  ///< the error dialog while it is open; it owns what is shown meanwhile
};

/// Twips of one pixel of the screen.
double TwipsPerPixel();

}  // namespace orvo::windows
