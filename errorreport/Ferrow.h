// The error dialog.
#pragma once

#include <cstdint>
#include <string>

#include "errorreport/CallStackList.h"
#include "errorreport/ErrorDialog.h"
#include "platform/Desktop.h"

namespace orvo {

/// Shows a failure on the platform's desktop, logs and delivers its report, and returns how the failing
/// procedure goes on. Not protected by the procedure protocol: its failures reach whoever called it.
class Ferrow final : public IErrorDialog, private IDialogEvents {
  public:
    Ferrow();

    /// Shows the current failure and waits. A window closed without a choice gives the choice made last. The
    /// report stands in the log before the window shows; where it cannot be written, nothing is shown and the
    /// call fails with the file's failure.
    Integer OnError(const std::string& AktModul, const std::string& AktProc) override;
    /// Records a procedure entry: puts the time before `a` and `a` on top of the call-stack list.
    void CallStack(std::string& a) override;
    /// Fixes the program-information line; otherwise the first failure fills it with name and version.
    void SetProgInfo(const std::string& Text);
    /// The text of a fixed buffer: up to its first character of code 0; empty where it holds none.
    static std::string LPSTRToVBString(const std::string& s);

    const CallStackList& CallStackEntries() const { return callStack_; }
    const Form& Controls() const override { return form_; }

  private:
    /// Builds the notice and stacks the frames, the window round them, in the middle of the screen.
    void ArrangeFrames();
    /// Sets `text` to the report with the dialog's texts as they stand.
    void BuildReport(std::string& text) const;
    void AppendReportLog() const;
    /// Fails with number 400 while a failure is being shown already.
    void ShowModal();

    void Form_Activate() override;
    void cmdContinue_Click(Integer index) override;
    void cmdProtocol_Click(Integer index) override;

    void SaveReport(const std::string& report) const;
    void MailReport(const std::string& report) const;

    static IDesktop& Desktop();
    /// Entries cost the list control nothing: it is filled anew when the window is activated and a report
    /// made.
    void ShowCallStack();
    void SetCaption(const char* name, Integer index, std::string text);

    Form form_;
    CallStackList callStack_;
    std::string strComment_, strCompany_, strFax_, strMail_, strWeb_;
    Integer intChoice_ = 0;
    std::int64_t second_ = -1;  ///< the second that timeText_ shows
    std::string timeText_;      ///< "hh:mm:ss "
};

}  // namespace orvo
