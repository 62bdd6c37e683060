// The desktop of a run: what is shown is counted, heard and ended by Ctrl-C.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Desktop.h"

namespace orvo::host {

/// Passes everything on to the desktop that shows it.
class WatchedDesktop final : public IDesktop {
  public:
    struct Watch {
        /// Before something is shown, so that a progress bar can make room.
        std::function<void()> makeRoom;
        /// Hears each failure that is shown, as "number (description)".
        std::function<void(const std::string& failure)> onFailure;
        /// Once it holds, every failure is answered with "leave" without a word: the failure is the
        /// interruption.
        std::function<bool()> interrupted;
    };

    WatchedDesktop(std::shared_ptr<IDesktop> shown, Watch watch);

    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override;
    void ShowModal(IDialogEvents& dialog) override;
    void Beep() override;
    void ResetPointer() override;
    Box Screen() override;
    void Print(const std::vector<std::string>& lines) override { shown_->Print(lines); }
    void CopyToClipboard(const std::string& text) override { shown_->CopyToClipboard(text); }
    void Open(const std::string& address) override { shown_->Open(address); }

    int FailuresShown() const { return failuresShown_; }
    int MessagesShown() const { return messagesShown_; }

  private:
    std::shared_ptr<IDesktop> shown_;
    Watch watch_;
    int failuresShown_ = 0;
    int messagesShown_ = 0;
};

}  // namespace orvo::host
