#include "platform/windows/desktop/Desktop.h"

#include <shellapi.h>

#include <cmath>

#include "platform/RuntimeError.h"
#include "platform/windows/Platform.h"
#include "platform/windows/desktop/FormWindow.h"
#include "platform/windows/desktop/Printer.h"
#include "platform/windows/system/WideText.h"

namespace orvo::windows {
namespace {

constexpr const wchar_t* kUsualTitle = L"Orvo_Tile";
constexpr double kTwipsPerInch = 1440;
constexpr int kClipboardAttempts = 10;
constexpr DWORD kClipboardPause = 20;  // milliseconds

/// The clipboard, open and empty; other programs hold it for moments at most.
class Clipboard {
  public:
    explicit Clipboard(HWND owner) {
        int attempt = 0;
        while (::OpenClipboard(owner) == 0) {
            if (++attempt == kClipboardAttempts) throw RuntimeError(Fault::CannotOpenClipboard);
            ::Sleep(kClipboardPause);
        }
        ::EmptyClipboard();
    }
    ~Clipboard() { ::CloseClipboard(); }
    Clipboard(const Clipboard&) = delete;
    Clipboard& operator=(const Clipboard&) = delete;

    template <class Character>
    void Put(UINT format, const std::basic_string<Character>& text) const {
        const std::size_t characters = text.size() + 1;
        const HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, characters * sizeof(Character));
        if (memory == nullptr) throw RuntimeError(Fault::OutOfMemory);
        text.copy(static_cast<Character*>(::GlobalLock(memory)), text.size());
        static_cast<Character*>(::GlobalLock(memory))[text.size()] = 0;
        ::GlobalUnlock(memory);
        ::GlobalUnlock(memory);
        if (::SetClipboardData(format, memory) != nullptr) return;
        ::GlobalFree(memory);
        throw RuntimeError(Fault::CannotOpenClipboard);
    }
};

std::string AnsiOf(const std::wstring& wide) {
    const int size = static_cast<int>(wide.size());
    std::string ansi(static_cast<std::size_t>(
                         ::WideCharToMultiByte(CP_ACP, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)),
                     '\0');
    ::WideCharToMultiByte(CP_ACP, 0, wide.data(), size, ansi.data(), static_cast<int>(ansi.size()), nullptr,
                          nullptr);
    return ansi;
}

/// What fails while nobody looks stands in a debugger's window.
void TellDebugger(const RuntimeError& failure) {
    ::OutputDebugStringW(
        Wide("Orvo_Tile: a dialog could not be prepared: " + failure.Description() + "\n").c_str());
}

}  // namespace

Policy CurrentPolicy() {
    const std::wstring named = Environment(kOnErrorVariable);
    if (named == L"next") return Policy::Next;
    return named == L"leave" ? Policy::Leave : Policy::Ask;
}

double TwipsPerPixel() {
    const HDC screen = ::GetDC(nullptr);
    const int perInch = screen == nullptr ? 0 : ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);
    return kTwipsPerInch / (perInch > 0 ? perInch : USER_DEFAULT_SCREEN_DPI);
}

MessageAnswer Desktop::MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                                  MessageButtons buttons) {
    const bool question = buttons == MessageButtons::YesNo;
    const MessageAnswer otherwise = question ? MessageAnswer::No : MessageAnswer::OK;
    if (CurrentPolicy() != Policy::Ask) return otherwise;
    const UINT style = (question ? MB_YESNO : MB_OK) | (icon == MessageIcon::Critical ? MB_ICONERROR : 0U) |
                       (front_ == nullptr ? MB_TASKMODAL | MB_SETFOREGROUND : 0U);
    const int answer =
        ::MessageBoxW(front_, Wide(text).c_str(), title.empty() ? kUsualTitle : Wide(title).c_str(), style);
    return answer == IDYES ? MessageAnswer::Yes : otherwise;
}

void Desktop::ShowModal(IDialogEvents& events) {
    const Policy policy = CurrentPolicy();
    if (policy == Policy::Ask) {
        FormWindow window(events, front_, [this](const RuntimeError& failure) {
            MessageBox(std::to_string(failure.Number()) + " (" + failure.Description() + ")", "",
                       MessageIcon::Critical, MessageButtons::OK);
        });
        if (window.Wait()) return;
    }
    dialog::AnswerUnseen(events, dialog::ChoiceOf(policy), TellDebugger);
}

void Desktop::Beep() {
    if (CurrentPolicy() == Policy::Ask) ::MessageBeep(MB_OK);
}

void Desktop::ResetPointer() {
    ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
}

Box Desktop::Screen() {
    const double twips = TwipsPerPixel();
    return {0, 0, static_cast<Long>(std::lround(::GetSystemMetrics(SM_CXSCREEN) * twips)),
            static_cast<Long>(std::lround(::GetSystemMetrics(SM_CYSCREEN) * twips))};
}

void Desktop::Print(const std::vector<std::string>& lines) {
    PrintOnDefaultPrinter(lines);
}

void Desktop::CopyToClipboard(const std::string& text) {
    const std::wstring wide = Wide(text);
    const Clipboard clipboard(front_);
    clipboard.Put(CF_UNICODETEXT, wide);
    clipboard.Put(CF_TEXT, AnsiOf(wide));
}

void Desktop::Open(const std::string& address) {
    constexpr INT_PTR kLastFailure = 32;
    const HINSTANCE done = ::ShellExecuteW(front_, L"Open", Wide(address).c_str(), L"", L"", SW_SHOWNORMAL);
    if (reinterpret_cast<INT_PTR>(done) > kLastFailure) return;
    MessageBox(address + "\r\n\r\n" + SystemText(ERROR_NO_ASSOCIATION), "", MessageIcon::None,
               MessageButtons::OK);
}

}  // namespace orvo::windows
