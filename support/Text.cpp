#include "support/Text.h"

#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace orvo {
namespace {

/// The other case of a two-byte character, or the character itself. Latin-1 pairs lie 32 apart; in Latin
/// Extended-A an upper-case letter and its lower-case one follow each other.
std::uint32_t OtherCase(std::uint32_t c, bool upper) {
    const bool latin1 = c >= 0xC0 && c <= 0xFE && c != 0xD7 && c != 0xDF && c != 0xF7;
    if (latin1) return upper ? (c >= 0xE0 ? c - 0x20 : c) : (c < 0xE0 ? c + 0x20 : c);
    if (c == 0xFF) return upper ? 0x178 : c;
    if (c == 0x178) return upper ? c : 0xFF;
    if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
    const bool evenIsUpper = (c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177);
    const bool oddIsUpper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    if (!evenIsUpper && !oddIsUpper) return c;
    const bool isUpper = (c % 2 == 0) == evenIsUpper;
    if (isUpper == upper) return c;
    return upper ? c - 1 : c + 1;
}

std::string MapCase(std::string_view text, bool upper) {
    std::string result(text);
    for (std::size_t i = 0; i < result.size(); ++i) {
        const auto byte = static_cast<unsigned char>(result[i]);
        if (byte < 0x80) {
            result[i] = static_cast<char>(upper ? std::toupper(byte) : std::tolower(byte));
        } else if (byte >= 0xC3 && byte <= 0xC5 && i + 1 < result.size()) {
            const auto next = static_cast<unsigned char>(result[i + 1]);
            const std::uint32_t mapped =
                OtherCase((static_cast<std::uint32_t>(byte & 0x1FU) << 6U) | (next & 0x3FU), upper);
            result[i] = static_cast<char>(0xC0U | (mapped >> 6U));
            result[++i] = static_cast<char>(0x80U | (mapped & 0x3FU));
        }
    }
    return result;
}

std::size_t SkipDigits(std::string_view text, std::size_t& at) {
    const std::size_t start = at;
    while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0) ++at;
    return at - start;
}

void SkipSign(std::string_view text, std::size_t& at) {
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
}

std::string TwoDigits(const LocalTime& time, const char* format) {
    std::array<char, 48> buffer{};
    static_cast<void>(
        std::snprintf(buffer.data(), buffer.size(), format, time.hour, time.minute, time.second));
    return buffer.data();
}

}  // namespace

std::string LCase(std::string_view text) {
    return MapCase(text, false);
}
std::string UCase(std::string_view text) {
    return MapCase(text, true);
}

std::string Left(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        const bool startsCharacter = (static_cast<unsigned char>(text[end]) & 0xC0U) != 0x80U;
        if (startsCharacter && count-- == 0) break;
    }
    return std::string(text.substr(0, end));
}

std::string AfterLast(std::string_view text, char mark) {
    const auto at = text.rfind(mark);
    return std::string(at == std::string_view::npos ? text : text.substr(at + 1));
}

std::string_view Trim(std::string_view text, std::string_view blanks) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string Printable(std::string_view text, char lineEnd) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c == '\r' && text.substr(i, 2) == "\r\n") continue;
        const bool isSecondSet = c == 0xC2 && i + 1 < text.size() && (text[i + 1] & 0xE0) == 0x80;
        const bool isControl = (c < ' ' && c != '\n' && c != '\t') || c == 0x7F || isSecondSet;
        shown += isControl ? '?' : c == '\n' ? lineEnd : text[i];
        i += isSecondSet ? 1 : 0;
    }
    return shown;
}

std::string NumberText(double value, std::string_view decimalSeparator) {
    std::array<char, 40> buffer{};
    static_cast<void>(std::snprintf(buffer.data(), buffer.size(), "%.15G", value == 0 ? 0.0 : value));
    std::string text = buffer.data();
    // The C library writes the separator of the process's own locale; it is the only mark besides E and
    // signs.
    const auto mark = text.find_first_not_of("0123456789+-E");
    if (std::isfinite(value) && mark != std::string::npos) text.replace(mark, 1, decimalSeparator);
    return text;
}

bool IsNumeric(std::string_view text) {
    text = Trim(text, " \t");
    std::size_t at = 0;
    SkipSign(text, at);
    std::size_t digits = SkipDigits(text, at);
    if (at < text.size() && text[at] == '.') digits += SkipDigits(text, ++at);
    if (digits == 0) return false;
    if (at < text.size() && (text[at] == 'E' || text[at] == 'e')) {
        SkipSign(text, ++at);
        if (SkipDigits(text, at) == 0) return false;
    }
    return at == text.size();
}

std::string ClockText(const LocalTime& time) {
    return TwoDigits(time, "%02d:%02d:%02d");
}
std::string CompactClockText(const LocalTime& time) {
    return TwoDigits(time, "%02d%02d%02d");
}

}  // namespace orvo
