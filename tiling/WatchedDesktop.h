// The desktop of a run: what is shown is counted, heard and ended by an interruption.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/dialog/ForwardingDesktop.h"

namespace orvo::tiling {

class WatchedDesktop final : public dialog::ForwardingDesktop {
  public:
    struct Watch {
        /// Hears each failure that is shown, as "number (description)".
        std::function<void(const std::string& failure)> onFailure;
        /// Once it holds, every failure is answered with "leave" without a word: the failure is the
        /// interruption.
        std::function<bool()> interrupted;
    };

    WatchedDesktop(std::shared_ptr<IDesktop> shown, Watch watch)
        : ForwardingDesktop(std::move(shown)), watch_(std::move(watch)) {}

    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override;
    void ShowModal(IDialogEvents& events) override;
    void Beep() override;
    void ResetPointer() override;
    Box Screen() override;

    int FailuresShown() const { return failuresShown_; }
    int MessagesShown() const { return messagesShown_; }

  private:
    Watch watch_;
    int failuresShown_ = 0;
    int messagesShown_ = 0;
};

}  // namespace orvo::tiling
