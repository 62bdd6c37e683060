#include "platform/windows/desktop/Printer.h"

#include "platform/RuntimeError.h"
#include "platform/windows/system/WideText.h"
// clang-format off
#include "platform/windows/system/Win32.h"
#include <winspool.h>
// clang-format on

namespace orvo::windows {
namespace {

constexpr int kPoints = 9;
constexpr int kPointsPerInch = 72;
constexpr int kMarginParts = 2;  // the margin is an inch through this
constexpr const wchar_t* kFamily = L"Courier New";

[[noreturn]] void Fail(const std::string& reason) {
    throw RuntimeError(Fault::PrinterError, reason);
}

std::wstring DefaultPrinter() {
    DWORD size = 0;
    ::GetDefaultPrinterW(nullptr, &size);
    std::wstring name(size, L'\0');
    if (size == 0 || ::GetDefaultPrinterW(name.data(), &size) == 0)
        Fail("there is no default printer; choose one in the Windows settings under Printers");
    name.resize(size - 1);
    return name;
}

/// A document on a printer; given up unless it is ended.
class Document {
  public:
    explicit Document(const std::wstring& printer)
        : printer_(::CreateDCW(nullptr, printer.c_str(), nullptr, nullptr)) {
        if (printer_ == nullptr) Fail(Utf8(printer) + " cannot be used");
        const int perInch = ::GetDeviceCaps(printer_, LOGPIXELSY);
        font_ = ::CreateFontW(-kPoints * perInch / kPointsPerInch, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                              DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                              FIXED_PITCH | FF_MODERN, kFamily);
        ::SelectObject(printer_, font_);
        margin_ = perInch / kMarginParts;
        TEXTMETRICW metrics{};
        ::GetTextMetricsW(printer_, &metrics);
        line_ = metrics.tmHeight + metrics.tmExternalLeading;
    }
    ~Document() {
        if (started_) ::AbortDoc(printer_);
        ::DeleteDC(printer_);
        ::DeleteObject(font_);
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    void Start() {
        DOCINFOW document{};
        document.cbSize = sizeof document;
        document.lpszDocName = L"Orvo_Tile";
        started_ = ::StartDocW(printer_, &document) > 0;
        Check(started_);
    }
    void Print(const std::wstring& text) {
        if (y_ + line_ > ::GetDeviceCaps(printer_, VERTRES) - margin_) EndPage();
        if (!pageOpen_) {
            Check(::StartPage(printer_) > 0);
            ::SelectObject(printer_, font_);
            pageOpen_ = true;
            y_ = margin_;
        }
        Check(::TabbedTextOutW(printer_, margin_, y_, text.c_str(), static_cast<int>(text.size()), 0, nullptr,
                               margin_) != 0 ||
              text.empty());
        y_ += line_;
    }
    void End() {
        EndPage();
        Check(::EndDoc(printer_) > 0);
        started_ = false;
    }

  private:
    void EndPage() {
        if (pageOpen_) Check(::EndPage(printer_) > 0);
        pageOpen_ = false;
        y_ = margin_;
    }
    static void Check(bool done) {
        if (!done) Fail(SystemText(::GetLastError()));
    }

    HDC printer_;
    HFONT font_ = nullptr;
    int margin_ = 0;
    int line_ = 0;
    int y_ = 0;
    bool started_ = false;
    bool pageOpen_ = false;
};

}  // namespace

void PrintOnDefaultPrinter(const std::vector<std::string>& lines) {
    Document document(DefaultPrinter());
    document.Start();
    for (const std::string& line : lines) document.Print(Wide(line));
    document.End();
}

}  // namespace orvo::windows
