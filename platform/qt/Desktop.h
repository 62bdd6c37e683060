// The desktop with real windows.
#pragma once

#include <string>
#include <vector>

#include "platform/Desktop.h"
#include "platform/qt/Module.h"

namespace orvo::qt {

/// Needs an application of the toolkit, and the thread that it belongs to; fails with number 429 on any
/// other.
class Desktop final : public IDesktop {
  public:
    /// @param helper path of the helper program; empty for none, and then a clipboard may end with the
    /// process
    explicit Desktop(WindowOptions options, std::string helper = "");

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
    void TellFailure(const RuntimeError& failure);

    WindowOptions options_;
    std::string helper_;
};

}  // namespace orvo::qt
