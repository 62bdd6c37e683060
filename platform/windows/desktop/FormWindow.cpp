#include "platform/windows/desktop/FormWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/dialog/Answers.h"
#include "platform/windows/desktop/Desktop.h"
#include "platform/windows/system/WideText.h"
#include "support/LabelRoom.h"

namespace orvo::windows {
namespace {

constexpr int kFirstId = 1000;  // of a control's window; below are the system's own
constexpr DWORD kWindowStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SETFOREGROUND;
/// The design's font has the system's dialog font for a successor of the same widths.
constexpr const char* kDesignFamily = "MS Sans Serif";
constexpr const wchar_t* kDialogFamily = L"MS Shell Dlg";
constexpr int kFull = 100;        // per cent
constexpr int kButtonEdges = 12;  // pixels that a caption keeps from both edges together
constexpr const wchar_t* kEdit = L"EDIT";
constexpr const wchar_t* kStatic = L"STATIC";
constexpr const wchar_t* kButton = L"BUTTON";
constexpr const wchar_t* kListBox = L"LISTBOX";

/// A dialog without controls: they are made from the form. The system wants it on a boundary of four bytes.
struct alignas(4) EmptyDialog {
    DLGTEMPLATE head{kWindowStyle, 0, 0, 0, 0, 0, 0};
    WORD menuClassAndTitle[3] = {0, 0, 0};
};

/// Measures texts in a font.
class Canvas {
  public:
    Canvas(HWND window, HFONT font)
        : window_(window), device_(::GetDC(window)), before_(::SelectObject(device_, font)) {}
    ~Canvas() {
        ::SelectObject(device_, before_);
        ::ReleaseDC(window_, device_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    HDC Device() const { return device_; }

  private:
    HWND window_;
    HDC device_;
    HGDIOBJ before_;
};

void SetText(HWND window, const std::wstring& text) {
    std::wstring shown(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
    shown.resize(
        static_cast<std::size_t>(::GetWindowTextW(window, shown.data(), static_cast<int>(shown.size()))));
    if (shown != text) ::SetWindowTextW(window, text.c_str());
}

void SetFont(HWND window, HFONT font) {
    ::SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

}  // namespace

/// The thread's other windows take no input while this lives, or until they are enabled.
class FormWindow::OthersDisabled {
  public:
    OthersDisabled() { ::EnumThreadWindows(::GetCurrentThreadId(), Disable, reinterpret_cast<LPARAM>(this)); }
    ~OthersDisabled() {
        Enable();
        if (active_ != nullptr) ::SetActiveWindow(active_);
    }
    OthersDisabled(const OthersDisabled&) = delete;
    OthersDisabled& operator=(const OthersDisabled&) = delete;
    void Enable() {
        for (const HWND window : windows_) ::EnableWindow(window, TRUE);
        windows_.clear();
    }

  private:
    static BOOL CALLBACK Disable(HWND window, LPARAM self) {
        if (::IsWindowVisible(window) == 0 || ::EnableWindow(window, FALSE) != 0) return TRUE;
        try {
            reinterpret_cast<OthersDisabled*>(self)->windows_.push_back(window);
        } catch (const std::bad_alloc&) {  // what cannot be remembered stays enabled
            ::EnableWindow(window, TRUE);
        }
        return TRUE;
    }
    HWND active_ = ::GetActiveWindow();
    std::vector<HWND> windows_;
};

FormWindow::FormWindow(IDialogEvents& events, HWND& front, TellFailure tell)
    : events_(events),
      front_(front),
      tell_(std::move(tell)),
      twips_(TwipsPerPixel()),
      children_(events.Controls().controls.size()) {}

FormWindow::~FormWindow() {
    for (const auto& [name, font] : fonts_) ::DeleteObject(font);
}

bool FormWindow::Wait() {
    OthersDisabled others;
    others_ = &others;
    const EmptyDialog dialog;
    const INT_PTR done = ::DialogBoxIndirectParamW(::GetModuleHandleW(nullptr), &dialog.head, nullptr,
                                                   Procedure, reinterpret_cast<LPARAM>(this));
    others_ = nullptr;
    front_ = nullptr;
    if (failure_) std::rethrow_exception(failure_);
    return done > 0;
}

INT_PTR FormWindow::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(window, DWLP_USER, second);
        reinterpret_cast<FormWindow*>(second)->window_ = window;
    }
    auto* const self = reinterpret_cast<FormWindow*>(::GetWindowLongPtrW(window, DWLP_USER));
    if (self == nullptr) return FALSE;
    try {
        return self->Handle(message, first, second);
    } catch (...) {
        if (!self->failure_) self->failure_ = std::current_exception();
        self->Close();
        return TRUE;
    }
}

INT_PTR FormWindow::Handle(UINT message, WPARAM first, LPARAM second) {
    switch (message) {
        case WM_INITDIALOG:
            front_ = window_;
            Run([this] { events_.Form_Activate(); });
            return FALSE;  // no control gets the focus
        case WM_ACTIVATE:
            if (LOWORD(first) == WA_INACTIVE)
                focus_ = ::GetFocus();
            else
                ::SetFocus(::IsChild(window_, focus_) != 0 ? focus_ : window_);
            return TRUE;
        case WM_SETFOCUS:  // stays with the window until a key moves it
            return TRUE;
        case WM_COMMAND: {
            const int id = LOWORD(first);
            if (id == IDCANCEL) Close();
            if (id >= kFirstId && HIWORD(first) == BN_CLICKED) Click(static_cast<std::size_t>(id - kFirstId));
            return TRUE;
        }
        case WM_CTLCOLORSTATIC:
            ::SetBkMode(reinterpret_cast<HDC>(first), TRANSPARENT);
            return reinterpret_cast<INT_PTR>(::GetSysColorBrush(COLOR_BTNFACE));
        default:
            static_cast<void>(second);
            return FALSE;
    }
}

void FormWindow::Close() {
    others_->Enable();
    ::EndDialog(window_, TRUE);
}

void FormWindow::Run(const std::function<void()>& handler) {
    dialog::Guard(handler, tell_);
    Refresh();
    if (!events_.Controls().self.visible) Close();
}

void FormWindow::Click(std::size_t control) {
    const Control& clicked = events_.Controls().controls.at(control);
    Run([&] { orvo::Click(events_, clicked); });
}

void FormWindow::Refresh() {
    PlaceWindow();
    SetText(window_, Wide(events_.Controls().self.Caption()));
    for (std::size_t n = 0; n < children_.size(); ++n) RefreshControl(n);
}

/// Gives the window the form's inner size, where the form wants it or in the middle of that place.
void FormWindow::PlaceWindow() const {
    const Form& form = events_.Controls();
    RECT frame{0, 0, Pixels(form.scaleWidth), Pixels(form.scaleHeight)};
    ::AdjustWindowRectEx(&frame, kWindowStyle, FALSE,
                         static_cast<DWORD>(::GetWindowLongPtrW(window_, GWL_EXSTYLE)));
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;
    const int left = Pixels(form.self.box.left) + (Pixels(form.self.box.width) - width) / 2;
    const int top = Pixels(form.self.box.top) + (Pixels(form.self.box.height) - height) / 2;
    ::SetWindowPos(window_, nullptr, std::max(left, 0), std::max(top, 0), width, height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormWindow::RefreshControl(std::size_t n) {
    const Control& control = events_.Controls().controls.at(n);
    const RECT place = Place(control);
    if (control.TypeName() == "ListBox") {
        RefreshList(n);
    } else if (control.TypeName() == "Label") {
        RefreshLabel(n, place);
    } else {
        const bool frame = control.TypeName() == "Frame";
        const DWORD style = frame ? WS_GROUP | BS_GROUPBOX : WS_TABSTOP | BS_PUSHBUTTON | BS_MULTILINE;
        const std::wstring caption = Wide(control.Caption());
        SetText(WindowOf(n, kButton, style), caption);
        SetFont(children_.at(n).window,
                frame ? FontOf(control.font) : FontOfButton(control.font, caption, place));
    }
    const HWND window = children_.at(n).window;
    ::MoveWindow(window, place.left, place.top, place.right - place.left, place.bottom - place.top, TRUE);
    ::ShowWindow(window, control.visible ? SW_SHOWNA : SW_HIDE);
}

HWND FormWindow::WindowOf(std::size_t n, const wchar_t* kind, DWORD style) {
    Child& child = children_.at(n);
    if (child.kind == kind) return child.window;
    if (child.window != nullptr) ::DestroyWindow(child.window);
    const auto id = static_cast<INT_PTR>(n) + kFirstId;
    child.window = ::CreateWindowExW(0, kind, L"", WS_CHILD | style, 0, 0, 0, 0, window_,
                                     reinterpret_cast<HMENU>(id), nullptr, nullptr);
    child.kind = kind;
    const HWND before = n == 0 ? HWND_TOP : children_.at(n - 1).window;
    ::SetWindowPos(child.window, before, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return child.window;
}

void FormWindow::RefreshLabel(std::size_t n, const RECT& place) {
    const Control& control = events_.Controls().controls.at(n);
    const HFONT font = FontOf(control.font);
    const int width = place.right - place.left;
    const bool title = !control.Get("Tag").empty();
    const std::wstring caption = Wide(control.Caption());
    const std::wstring text = title ? Divided(caption, width, font) : caption;
    const bool fits = title || TextHeight(text, width, font) <= place.bottom - place.top;
    const DWORD scrolled = WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY;
    const HWND window = fits ? WindowOf(n, kStatic, SS_LEFT | SS_NOPREFIX) : WindowOf(n, kEdit, scrolled);
    SetFont(window, font);
    SetText(window, text);
}

void FormWindow::RefreshList(std::size_t n) {
    const Control& control = events_.Controls().controls.at(n);
    const HWND window =
        WindowOf(n, kListBox, WS_TABSTOP | WS_BORDER | WS_VSCROLL | WS_HSCROLL | LBS_NOINTEGRALHEIGHT);
    const HFONT font = FontOf(control.font);
    SetFont(window, font);
    const Canvas canvas(window, font);
    ::SendMessageW(window, WM_SETREDRAW, FALSE, 0);
    ::SendMessageW(window, LB_RESETCONTENT, 0, 0);
    LONG widest = 0;
    for (const std::string& entry : control.list) {
        const std::wstring text = Wide(entry);
        SIZE size{};
        ::GetTextExtentPoint32W(canvas.Device(), text.c_str(), static_cast<int>(text.size()), &size);
        widest = std::max(widest, size.cx);
        ::SendMessageW(window, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    constexpr WPARAM kMargin = 8;  // pixels
    ::SendMessageW(window, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest) + kMargin, 0);
    ::SendMessageW(window, WM_SETREDRAW, TRUE, 0);
}

RECT FormWindow::Place(const Control& control) const {
    const Form& form = events_.Controls();
    Box box = control.TypeName() == "Label" ? LabelRoom(control, form) : control.box;
    for (const Control& frame : form.controls) {
        if (frame.name != control.container) continue;
        box.left += frame.box.left;
        box.top += frame.box.top;
    }
    return {Pixels(box.left), Pixels(box.top), Pixels(box.left + box.width), Pixels(box.top + box.height)};
}

int FormWindow::Pixels(double twips) const {
    return static_cast<int>(std::lround(twips / twips_));
}

HFONT FormWindow::FontOf(const Font& font, int percent) {
    constexpr double kTwipsPerPoint = 20;
    const int height = ::MulDiv(Pixels(font.points * kTwipsPerPoint), percent, kFull);
    HFONT& made = fonts_[{font.family, font.bold ? -height : height}];
    if (made == nullptr) {
        const std::wstring family = font.family == kDesignFamily ? kDialogFamily : Wide(font.family);
        made = ::CreateFontW(-height, 0, 0, 0, font.bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE,
                             DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                             DEFAULT_PITCH | FF_DONTCARE, family.c_str());
    }
    return made;
}

HFONT FormWindow::FontOfButton(const Font& font, std::wstring caption, const RECT& place) {
    constexpr int kSmallest = 80;
    constexpr int kStep = 10;
    std::erase(caption, L'&');
    const int width = place.right - place.left - kButtonEdges;
    int percent = kFull;
    while (percent > kSmallest &&
           TextHeight(caption, width, FontOf(font, percent)) > place.bottom - place.top)
        percent -= kStep;
    return FontOf(font, percent);
}

std::wstring FormWindow::Divided(const std::wstring& text, int width, HFONT font) const {
    const Canvas canvas(window_, font);
    std::wstring divided, word;
    const auto fits = [&](const std::wstring& part) {
        SIZE size{};
        ::GetTextExtentPoint32W(canvas.Device(), part.c_str(), static_cast<int>(part.size()), &size);
        return size.cx <= width;
    };
    for (const wchar_t c : text) {
        if (!word.empty() && c != L' ' && !fits(word + c + L'-')) {
            divided += word + L"-\r\n";
            word.clear();
        }
        word += c;
        if (c == L' ') divided += std::exchange(word, {});
    }
    return divided + word;
}

int FormWindow::TextHeight(const std::wstring& text, int width, HFONT font) const {
    const Canvas canvas(window_, font);
    RECT place{0, 0, width, 0};
    ::DrawTextW(canvas.Device(), text.c_str(), static_cast<int>(text.size()), &place,
                DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS);
    return place.right > width ? 0x7FFF : place.bottom;  // a word that is too wide does not fit at all
}

}  // namespace orvo::windows
