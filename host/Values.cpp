#include "host/Values.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <string_view>

#include "support/Text.h"
#include "tiling/Errors.h"

namespace orvo::host {
namespace {

constexpr Integer kGerman = 0;
constexpr Integer kEnglish = 10000;
constexpr Integer kFrench = 20000;

std::string_view WithoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    return text;
}

/// Reads the whole text as a value; an error code where it is none or out of range.
template <class Value>
std::errc Read(const std::string& text, Value& value) {
    const std::string_view digits = WithoutPlus(text);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc())
        return end == digits.data() + digits.size() ? error : std::errc::invalid_argument;
    return error;
}

std::string Quoted(const std::string& option, const std::string& text) {
    return option + " \"" + text + "\"";
}

bool IsProgram(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

/// The locale that texts are shown in.
std::string MessagesLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return "";
}

}  // namespace

Long ParseSize(const std::string& option, const std::string& text) {
    const std::string remedy = "give whole map units, 1 to 2147483647, or -1 for the whole axis";
    Long value = 0;
    const std::errc error = Read(text, value);
    if (error == std::errc::result_out_of_range) {
        throw UsageError(Quoted(option, text) + " does not fit into 32 bits; " + remedy);
    }
    if (error != std::errc()) throw UsageError(Quoted(option, text) + " is not a whole number; " + remedy);
    if (value < 1 && value != -1) throw UsageError(Quoted(option, text) + " is no size of a tile; " + remedy);
    return value;
}

Long ParseCount(const std::string& option, const std::string& text) {
    Long value = 0;
    if (Read(text, value) != std::errc() || value < 1) {
        throw UsageError(Quoted(option, text) + " is no number of tiles; give a whole number from 1 on");
    }
    return value;
}

double ParseNumber(const std::string& option, const std::string& text) {
    double value = 0;
    if (Read(text, value) != std::errc() || !std::isfinite(value)) {
        throw UsageError(Quoted(option, text) +
                         " is not a number; write it with a decimal point, for example -12.5");
    }
    return value;
}

Integer ParseQuality(const std::string& text) {
    Integer value = 0;
    if (Read(text, value) != std::errc() || value < 1 || value > 100) {
        throw UsageError(Quoted("--quality", text) + " is out of range; give a whole number from 1 to 100");
    }
    return value;
}

std::string ParseFormat(const std::string& text) {
    std::string format = LCase(text);
    if (format.starts_with('.')) format.erase(0, 1);
    const bool plain = std::all_of(format.begin(), format.end(),
                                   [](unsigned char c) { return c < 128 && std::isalnum(c) != 0; });
    if (format.empty() || format.size() > 10 || !plain) {
        throw UsageError(Quoted("--format", text) +
                         " is no file extension; give one such as png, jpg, gif or bmp");
    }
    if (format == "jpeg") return "jpg";
    return format == "tiff" ? "tif" : format;
}

Integer ParseLanguage(const std::string& text) {
    if (text.empty()) {
        const std::string language = MessagesLocale().substr(0, 2);
        return language == "de" ? kGerman : language == "fr" ? kFrench : kEnglish;
    }
    if (text == "de") return kGerman;
    if (text == "en") return kEnglish;
    if (text == "fr") return kFrench;
    throw UsageError(Quoted("--language", text) + " is not known; choose de, en or fr");
}

void RefuseBackslash(const std::string& what, const std::string& path) {
    if (path.find('\\') == std::string::npos) return;
    throw UsageError(what + " \"" + path +
                     "\" holds a backslash, which separates folders here; rename it, or use a "
                     "symbolic link without one");
}

std::string FindProgram(const std::string& option, const std::string& program) {
    if (program.find('/') != std::string::npos) {
        if (IsProgram(program)) return program;
        throw UsageError(Quoted(option, program) + " is not a program that can be run; check the path");
    }
    const char* path = std::getenv("PATH");
    std::istringstream folders(path == nullptr ? "/usr/bin:/bin" : path);
    for (std::string folder; !program.empty() && std::getline(folders, folder, ':');) {
        if (IsProgram((folder.empty() ? "." : folder) + "/" + program)) return program;
    }
    throw UsageError(Quoted(option, program) + " is not found along PATH; install it or give its full path");
}

}  // namespace orvo::host
