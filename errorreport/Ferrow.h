// The error dialog.
#pragma once

#include <string>

#include "errorreport/CallStackList.h"
#include "errorreport/ErrorDialog.h"
#include "platform/Desktop.h"
#include "support/Form.h"

namespace orvo {

/// Shows a failure on the platform's desktop and returns how the failing procedure goes on. Not protected by
/// the procedure protocol: its failures reach whoever called it.
class Ferrow final : public IErrorDialog, private IDialogEvents {
  public:
    Ferrow();

    /// Records a procedure entry: puts the time before `a` and `a` on top of the call-stack list.
    void CallStack(std::string& a) override;
    /// Shows the current failure and waits. A window closed without a choice gives the choice made last.
    Integer OnError(const std::string& AktModul, const std::string& AktProc) override;

    /// Fixes the program-information line; otherwise the first failure fills it with name and version.
    void SetProgInfo(const std::string& Text);
    /// The text up to its first character of code 0; empty where it holds none.
    static std::string LPSTRToVBString(const std::string& s);

    const CallStackList& CallStackEntries() const { return callStack_; }

  private:
    void cmdContinue_Click(Integer index) override;
    FailureView Form_Activate() override;
    FailureView View() const;
    const std::string& Caption(std::size_t control) const;

    CallStackList callStack_;
    Form form_;
    std::array<std::string, 4> lblError_;
    std::string lblProgInfo_;
    Integer intChoice_ = 0;
    std::int64_t second_ = -1;  ///< the second that timeText_ shows
    std::string timeText_;      ///< "hh:mm:ss "
};

}  // namespace orvo
