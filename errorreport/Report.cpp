#include "errorreport/Report.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "support/Text.h"

namespace orvo {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kPrinterColumns = 73;
// Plain arrays: a failure may be reported while the process ends.
constexpr const char* kSeparator =
    "----------------------------------------------------------------------\r\n";
constexpr const char* kIndent = "          ";
constexpr const char* kContinuation = "                    ";

std::string Line(const std::string& text) {
    return text + std::string(kLineEnd);
}

std::string Row(const std::string& title, const std::string& text) {
    return Line(kIndent + title + "\t" + text);
}

/// "mm-dd-yyyy / hh:mm:ss", whatever the user's locale.
std::string TimeText(const LocalTime& time) {
    std::array<char, 48> date{};
    static_cast<void>(
        std::snprintf(date.data(), date.size(), "%02d-%02d-%04d", time.month, time.day, time.year));
    return std::string(date.data()) + " / " + ClockText(time);
}

std::string FailureRows(const Form& dialog) {
    std::string rows = Line(UCase(dialog.At("framFehler").Caption()));
    for (Integer i = 0; i < 4; ++i)
        rows += Row(dialog.At("lblErrTitel", i).Caption(), dialog.At("lblError", i).Caption());
    return rows;
}

/// An unknown family gives nothing, not even the line's end.
std::string FamilyText(Long platformId) {
    switch (platformId) {
        case 0:
            return Line("Win32s");
        case 1:
            return Line("Windows 95");
        case 2:
            return Line("Windows NT");
        default:
            return "";
    }
}

std::string SystemRows(const OSVersion& system) {
    return Line("SYSTEMINFO:") + kIndent + "Plattform:\t" + FamilyText(system.platformId) +
           Row("Version:", std::to_string(system.major) + "." + std::to_string(system.minor)) +
           Row("Build:", std::to_string(system.build) + "   " +
                             system.servicePack.substr(0, system.servicePack.find('\0')));
}

std::size_t Characters(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

/// Takes the text up to and including the first `mark`, which occurs in it, off the front.
std::string_view Take(std::string_view& text, std::string_view mark) {
    const std::size_t end = text.find(mark) + mark.size();
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end);
    return taken;
}

void WrapLine(std::string_view line, std::vector<std::string>& printed) {
    std::string out;
    std::size_t column = 0;
    while (line.find(' ') != std::string_view::npos) {
        const std::string_view word = Take(line, " ");
        const std::size_t length = Characters(word);
        column += length;
        if (column > kPrinterColumns) {
            if (!out.empty()) {
                printed.push_back(out);
                out = kContinuation;
            }
            column = length;
        }
        out += word;
    }
    if (!out.empty()) printed.push_back(out);
}

}  // namespace

std::string ReportText(const Form& dialog, const CallStackList& callStack, const ReportFacts& facts) {
    std::string text =
        std::string(kSeparator) + Line("F E H L E R P R O T O K O L L vom Ferrow") + kSeparator;
    text += Line(UCase(dialog.At("framProgInfo").Caption()));
    text += Line(kIndent + dialog.At("lblProgInfo").Caption()) + kSeparator;
    text += FailureRows(dialog) + Row("Datum/Uhrzeit:", TimeText(facts.time)) + kSeparator;
    text += Line(UCase(dialog.At("framCallStack").Caption()));
    for (const std::string& entry : callStack.Entries()) text += Line(kIndent + entry);
    return text + kSeparator + SystemRows(facts.system) + kSeparator;
}

std::vector<std::string> PrinterLines(std::string_view text) {
    std::vector<std::string> printed;
    while (text.find(kLineEnd) != std::string_view::npos) {
        std::string line(Take(text, kLineEnd));
        line.replace(line.size() - kLineEnd.size(), kLineEnd.size(), " ");
        WrapLine(line, printed);
    }
    return printed;
}

}  // namespace orvo
