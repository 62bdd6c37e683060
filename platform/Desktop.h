// What a person sees: message boxes and the window of the error dialog.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/Types.h"

namespace orvo {

enum class MessageIcon { None, Critical };
enum class MessageButtons { OK, YesNo };
enum class MessageAnswer { OK, Yes, No };

/// What the error dialog shows for one failure. An ampersand marks the letter behind it as access key.
struct FailureView {
    struct Row {
        std::string caption;
        std::string text;
    };
    std::string title;
    std::vector<Row> rows;  ///< failure, module, procedure, line
    std::string programInfo;
    std::string callStackCaption;
    std::vector<std::string> callStack;  ///< newest first
    std::string continueCaption;
    std::array<std::string, 3> choices;  ///< retry, next statement, leave
};

/// The dialog's answers to what the user does in its window.
class IDialogEvents {
  public:
    virtual ~IDialogEvents() = default;
    virtual void cmdContinue_Click(Integer index) = 0;
    /// The texts as they stand once the window has been activated.
    virtual FailureView Form_Activate() = 0;
};

class IDesktop {
  public:
    virtual ~IDesktop() = default;
    virtual MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                                     MessageButtons buttons) = 0;
    /// Shows the dialog and returns once a continue button was clicked or the window closed otherwise.
    virtual void ShowModal(IDialogEvents& dialog) = 0;
    virtual void Beep() = 0;
    /// Sets the pointer back to its default shape.
    virtual void ResetPointer() = 0;
};

}  // namespace orvo
