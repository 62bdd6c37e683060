// What a person sees and uses: the error dialog's window, message boxes, printer, clipboard, mail and web.
#pragma once

#include <string>
#include <vector>

#include "platform/Dialog.h"
#include "platform/Types.h"

namespace orvo {

enum class MessageIcon { None, Critical };
enum class MessageButtons { OK, YesNo };
enum class MessageAnswer { OK, Yes, No };

/// The error dialog's answers to what the user does in its window. A handler may change the form, and may
/// fail.
class IDialogEvents {
  public:
    virtual ~IDialogEvents() = default;
    /// The controls as they stand. The form lives as long as the dialog; handlers change it.
    virtual const Form& Controls() const = 0;
    /// The window was activated; at least once per showing, before the user sees the texts.
    virtual void Form_Activate() = 0;
    /// A continue button was clicked (0 retry, 1 next statement, 2 leave): hides the form.
    virtual void cmdContinue_Click(Integer index) = 0;
    /// A report button was clicked (0 print, 1 save, 2 e-mail, 3 web): the form stays.
    virtual void cmdProtocol_Click(Integer index) = 0;
};

/// Tells the dialog which of its buttons was clicked.
inline void Click(IDialogEvents& dialog, const Control& button) {
    if (button.name == "cmdContinue") dialog.cmdContinue_Click(button.index);
    if (button.name == "cmdProtocol") dialog.cmdProtocol_Click(button.index);
}

/// Every service may fail with a RuntimeError; none waits for what is not there.
class IDesktop {
  public:
    virtual ~IDesktop() = default;

    /// @param title empty for the desktop's usual one
    virtual MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                                     MessageButtons buttons) = 0;
    /// Shows the dialog, and returns once a handler has made its form invisible or the user has closed the
    /// window otherwise. A handler's failure is shown to the user as a message and ends that handler alone.
    virtual void ShowModal(IDialogEvents& events) = 0;
    virtual void Beep() = 0;
    /// Sets the pointer back to its default shape.
    virtual void ResetPointer() = 0;
    /// The screen that dialogs are centred on, in twips; left and top are 0.
    virtual Box Screen() = 0;

    /// Prints lines of UTF-8 as one document on the default printer.
    virtual void Print(const std::vector<std::string>& lines) = 0;
    /// Clears the clipboard and puts UTF-8 text on it as plain text.
    virtual void CopyToClipboard(const std::string& text) = 0;
    /// Has the system open an address ("mailto:…", "https://…") with the user's own program. Where none does,
    /// the user is told; the caller is not.
    virtual void Open(const std::string& address) = 0;
};

}  // namespace orvo
