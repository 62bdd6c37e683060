// The desktop in a terminal: message boxes and the error dialog as text.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>

#include "platform/Desktop.h"
#include "platform/FailureView.h"
#include "platform/console/Terminal.h"

namespace orvo::console {

/// Who answers the error dialog: the user, or "next statement" or "leave the procedure" for every failure.
enum class Policy { Ask, Next, Leave };

struct DesktopOptions {
    std::ostream* out =
        nullptr;  ///< where everything is shown; outlives the desktop; null for standard error
    /// Reads the user's answers; empty where there is no terminal, and then nothing is asked.
    LineReader read;
    Policy policy = Policy::Ask;
    std::string prefix;  ///< put before the one-line form of a failure, for example "orvo-tile: "
    /// Once it holds, every failure is answered with "leave" without a word: the failure is the interruption.
    std::function<bool()> interrupted = [] { return false; };
    /// Called before something is shown, so that a progress bar can make room.
    std::function<void()> makeRoom = [] {};
    /// Hears each failure that is shown, as "number (description)".
    std::function<void(const std::string& failure)> onFailure = [](const std::string&) {};
};

/// Never waits for want of a terminal: without one, policy Ask acts as Leave, and a question is answered with
/// no.
///
/// At the end of input the error dialog clicks "leave". Closing the window without a click would give the
/// choice made last; that may be "retry", which would never end.
class Desktop final : public IDesktop {
  public:
    explicit Desktop(DesktopOptions options);

    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override;
    void ShowModal(IDialogEvents& dialog) override;
    void Beep() override;
    void ResetPointer() override {}
    Box Screen() override { return {}; }
    void Print(const std::vector<std::string>& lines) override;
    void CopyToClipboard(const std::string& text) override;
    void Open(const std::string& address) override;

    int FailuresShown() const { return failuresShown_; }
    int MessagesShown() const { return messagesShown_; }

  private:
    Integer Answer(const FailureView& view) const;
    void ShowWhole(const FailureView& view) const;
    void ShowBriefly(const FailureView& view, Integer choice) const;

    DesktopOptions options_;
    int failuresShown_ = 0;
    int messagesShown_ = 0;
};

}  // namespace orvo::console
