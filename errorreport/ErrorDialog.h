// The error dialog as the procedure protocol sees it.
#pragma once

#include <memory>
#include <string>

#include "platform/Types.h"

namespace orvo {

/// How a failing procedure goes on. Any other value leaves the procedure.
enum class ContinueChoice : Integer { Retry = 0, ResumeNext = 1, ExitProcedure = 2, EndProgram = 3 };

/// The failure that is being handled.
struct Failure {
    Long number = 0;
    std::string description;
    Long line = 0;  ///< source line of the failing statement
};

class IErrorDialog {
  public:
    virtual ~IErrorDialog() = default;
    /// Records a procedure entry; `a` becomes the time, a blank and what it was.
    virtual void CallStack(std::string& a) = 0;
    /// Shows the current failure and returns a ContinueChoice.
    virtual Integer OnError(const std::string& AktModul, const std::string& AktProc) = 0;
};

/// Makes the component's dialog; defined beside the dialog.
std::unique_ptr<IErrorDialog> MakeErrorDialog();

/// The process's one dialog, made on first use and kept.
IErrorDialog& GlobalErrorDialog();

/// Replaces the process's dialog; an empty pointer has a new one made on the next use. For tests and hosts
/// that bring their own.
void SetErrorDialog(std::unique_ptr<IErrorDialog> dialog);

/// The failure being handled; number 0 between failures.
const Failure& CurrentFailure();

}  // namespace orvo
