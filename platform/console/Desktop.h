// The desktop in a terminal: message boxes and the error dialog as text.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "platform/Desktop.h"
#include "platform/FailureView.h"
#include "platform/Process.h"
#include "platform/console/Delivery.h"
#include "platform/console/Menu.h"
#include "platform/console/Terminal.h"
#include "platform/dialog/Answers.h"

namespace orvo::console {

using dialog::Policy;

struct DesktopOptions {
    std::ostream* out =
        nullptr;  ///< where everything is shown; outlives the desktop; null for standard error
    /// Reads the user's answers; empty where there is no terminal, and then nothing is asked.
    LineReader read;
    Policy policy = Policy::Ask;
    std::string program = "Orvo_Tile";  ///< before what is said in one line, in the place of a title
    /// Starts printing commands and the user's own programs; null where none are started.
    std::shared_ptr<IProcessRunner> runner;
    Clipboard clipboard = Clipboard::None;
    bool display = false;  ///< programs with a window can be started
    std::string browser;   ///< as in OpenAddress
    /// Names the file that the reports are logged to.
    std::function<std::string()> log = [] { return std::string("Orvo_Tile.EPT"); };
    /// Once it holds, every failure is answered with "leave" without a word: the failure is the interruption.
    std::function<bool()> interrupted = [] { return false; };
};

/// What the process's terminal and environment give: reader, clipboard, display, browser and `runner`.
DesktopOptions TerminalOptions(std::shared_ptr<IProcessRunner> runner);

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
    void ShowModal(IDialogEvents& events) override;
    void Beep() override;
    void ResetPointer() override {}
    Box Screen() override { return {}; }
    void Print(const std::vector<std::string>& lines) override;
    /// Where there is no clipboard, says where the report lies.
    void CopyToClipboard(const std::string& text) override;
    void Open(const std::string& address) override;

  private:
    /// Asks until an answer names one button; −1 at the end of input.
    Integer Ask(const Menu& menu) const;
    void Click(IDialogEvents& events, Integer button) const;
    void ShowWhole(const FailureView& view, const Menu& menu) const;
    void ShowBriefly(const FailureView& view, const std::string& choice) const;
    /// In one line.
    void TellFailure(const RuntimeError& failure) const;
    std::ostream& Out() const { return *options_.out; }

    DesktopOptions options_;
};

}  // namespace orvo::console
