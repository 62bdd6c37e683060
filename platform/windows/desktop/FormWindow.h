// A dialog's window, drawn from its form.
#pragma once

#include <exception>
#include <functional>
#include <map>
#include <vector>

#include "platform/Desktop.h"
#include "platform/RuntimeError.h"
#include "platform/windows/system/Win32.h"

namespace orvo::windows {

/// Modal over all windows of its thread. Escape and the close box close it without a choice; access keys, Tab
/// and the arrows work as in every dialog. At first no control has the focus: a key pressed in haste does
/// nothing. A text that is too long for its place gets a scroll bar and can be copied.
class FormWindow {
  public:
    using TellFailure = std::function<void(const RuntimeError& failure)>;

    /// @param front holds the window while it is open
    FormWindow(IDialogEvents& events, HWND& front, TellFailure tell);
    ~FormWindow();
    FormWindow(const FormWindow&) = delete;
    FormWindow& operator=(const FormWindow&) = delete;

    /// Shows the dialog until its form is invisible or the user has closed it; false where no window can be.
    /// What fails meanwhile and cannot be told closes the window and is thrown from here.
    bool Wait();

  private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);
    INT_PTR Handle(UINT message, WPARAM first, LPARAM second);
    /// The thread's windows take input again before this one goes: else another program's would become
    /// active.
    void Close();
    void Run(const std::function<void()>& handler);
    void Click(std::size_t control);

    void Refresh();
    // Controls are named by their place in the form.
    void PlaceWindow() const;
    void RefreshControl(std::size_t n);
    /// Makes the control's window, or makes it anew where another kind is wanted.
    HWND WindowOf(std::size_t n, const wchar_t* kind, DWORD style);
    void RefreshLabel(std::size_t n, const RECT& place);
    void RefreshList(std::size_t n);
    RECT Place(const Control& control) const;
    int Pixels(double twips) const;
    HFONT FontOf(const Font& font, int percent = 100);
    /// The largest letters, readable still, in which a button's caption fits.
    HFONT FontOfButton(const Font& font, std::wstring caption, const RECT& place);
    /// A text whose words fit a width: longer ones are divided.
    std::wstring Divided(const std::wstring& text, int width, HFONT font) const;
    /// Height that a text takes when it is broken at a width.
    int TextHeight(const std::wstring& text, int width, HFONT font) const;

    IDialogEvents& events_;
    HWND& front_;
    TellFailure tell_;
    double twips_;
    class OthersDisabled;
    OthersDisabled* others_ = nullptr;  ///< while the window is open
    HWND window_ = nullptr;
    std::exception_ptr failure_;  ///< kept while the system's own functions are on the stack
    HWND focus_ = nullptr;        ///< the control that had the focus while the window was active last
    struct Child {
        HWND window = nullptr;
        const wchar_t* kind = nullptr;
    };
    std::vector<Child> children_;                         ///< one per control, in the form's order
    std::map<std::pair<std::string, int>, HFONT> fonts_;  ///< by family and height; bold ones below 0
};

}  // namespace orvo::windows
