#include "platform/console/Delivery.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <sstream>
#include <system_error>

#include "platform/RuntimeError.h"
#include "platform/console/Words.h"

namespace orvo::console {
namespace {

constexpr std::chrono::seconds kPrinting{20};  ///< a spooler answers sooner, or not at all
constexpr std::chrono::seconds kOpening{2};    ///< what cannot open an address has said so by then
constexpr std::size_t kScreenPiece = 512;      ///< GNU screen passes at most 768 bytes through at once

/// A file that is there as long as its object.
class Document {
  public:
    explicit Document(const std::vector<std::string>& lines) {
        std::error_code none;
        name_ = std::filesystem::temp_directory_path(none).string();
        if (name_.empty()) name_ = "/tmp";
        name_ += "/Orvo_Tile-XXXXXX";
        const int descriptor = ::mkostemp(name_.data(), 0);
        if (descriptor < 0) FailPrinting(name_ + ": " + std::generic_category().message(errno));
        std::string text;
        for (const std::string& line : lines) text += line + '\n';
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        const bool whole = ::close(descriptor) == 0 && written == static_cast<ssize_t>(text.size());
        if (whole) return;
        ::unlink(name_.c_str());
        FailPrinting(name_ + CurrentWords().notWritten);
    }
    ~Document() { ::unlink(name_.c_str()); }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    const std::string& Name() const { return name_; }

  private:
    std::string name_;
};

std::string OneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

std::string Base64(std::string_view bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::string_view group = bytes.substr(i, 3);
        unsigned bits = 0;
        for (std::size_t k = 0; k < 3; ++k)
            bits = bits << 8U | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= group.size() ? kDigits[bits >> (18 - 6 * k) & 63U] : '=';
    }
    return text;
}

/// Program and arguments of the first command in BROWSER; "%s" stands for the address.
std::vector<std::string> BrowserCommand(const std::string& browser, const std::string& address) {
    std::istringstream words(browser.substr(0, browser.find(':')));
    std::vector<std::string> command;
    bool named = false;
    for (std::string word; words >> word; command.push_back(word)) {
        if (word != "%s") continue;
        word = address;
        named = true;
    }
    if (!command.empty() && !named) command.push_back(address);
    return command;
}

}  // namespace

void FailPrinting(const std::string& why) {
    throw RuntimeError(static_cast<Long>(Fault::PrinterError), CurrentWords().printerError + why);
}

void PrintLines(IProcessRunner& runner, const std::vector<std::string>& lines,
                const std::function<bool()>& interrupted) {
    const Words& words = CurrentWords();
    const Document document(lines);
    const auto end = std::chrono::steady_clock::now() + kPrinting;
    const auto over = [&] { return interrupted() || std::chrono::steady_clock::now() >= end; };
    for (const std::string command : {"lp", "lpr"}) {
        const ProcessResult result = runner.Run(command, {document.Name()}, "", over);
        if (!result.started) continue;
        if (result.exitCode == 0) return;
        if (result.signal != 0) FailPrinting(command + words.printerStops);
        FailPrinting(command + words.printerSays + OneLine(result.output) + words.printerAdvice);
    }
    FailPrinting(words.noPrinter);
}

std::string ClipboardSequence(std::string_view text, Clipboard clipboard) {
    std::string plain = "\033]52;c;" + Base64(text) + "\a";
    switch (clipboard) {
        case Clipboard::Terminal:
            return plain;
        case Clipboard::Tmux:
            // Plain for its own buffer, and passed through for the terminal outside: its settings take
            // either.
            return plain + "\033Ptmux;\033" + plain + "\033\\";
        case Clipboard::Screen: {
            std::string pieces;
            for (std::size_t i = 0; i < plain.size(); i += kScreenPiece)
                pieces += "\033P" + plain.substr(i, kScreenPiece) + "\033\\";
            return pieces;
        }
        default:
            return "";
    }
}

bool OpenAddress(IProcessRunner& runner, const std::string& address, const std::string& browser) {
    std::vector<std::vector<std::string>> commands{{"xdg-open", address}};
    if (address.starts_with("http")) commands.push_back(BrowserCommand(browser, address));
    return std::ranges::any_of(commands, [&](const std::vector<std::string>& command) {
        if (command.empty()) return false;
        const ProcessResult result =
            runner.Start(command.front(), {command.begin() + 1, command.end()}, kOpening);
        return result.started && result.exitCode <= 0 && result.signal == 0;
    });
}

}  // namespace orvo::console
