#include "host/Options.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string_view>

#include "errorreport/Version.h"

namespace orvo::host {
namespace {

using tiling::UsageError;

/// Reads the whole text as a value; an error code where it is none or out of range.
template <class Value>
std::errc Read(std::string_view text, Value& value) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end != text.data() + text.size() ? std::errc::invalid_argument : error;
}

bool IsProgram(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

Long ParseSize(const std::string& text) {
    const std::string remedy = "; give whole map units, 1 to 2147483647, or -1 for the whole axis";
    Long value = 0;
    const std::errc error = Read(text, value);
    if (error == std::errc::result_out_of_range) throw UsageError("does not fit into 32 bits" + remedy);
    if (error != std::errc()) throw UsageError("is not a whole number" + remedy);
    if (value < 1 && value != -1) throw UsageError("is no size of a tile" + remedy);
    return value;
}

Long ParseCount(const std::string& text) {
    Long value = 0;
    if (Read(text, value) != std::errc() || value < 1)
        throw UsageError("is no number of tiles; give a whole number from 1 on");
    return value;
}

double ParseNumber(const std::string& text) {
    double value = 0;
    if (Read(text, value) != std::errc() || !std::isfinite(value))
        throw UsageError("is not a number; write it with a decimal point, for example -12.5");
    return value;
}

Integer ParseQuality(const std::string& text) {
    Integer value = 0;
    if (Read(text, value) != std::errc() || value < 1 || value > 100)
        throw UsageError("is out of range; give a whole number from 1 to 100");
    return value;
}

int ParseJobs(const std::string& text) {
    constexpr int kMost = 1024;
    int value = 0;
    if (Read(text, value) != std::errc() || value < 1 || value > kMost)
        throw UsageError("is out of range; give a whole number from 1 to 1024");
    return value;
}

std::vector<double> ParseNumbers(const std::string& option, const std::vector<std::string>& texts) {
    std::vector<double> numbers;
    for (const std::string& text : texts) {
        try {
            numbers.push_back(ParseNumber(text));
        } catch (const UsageError& error) {
            throw UsageError(std::string(option).append(" \"").append(text).append("\" ") + error.what());
        }
    }
    return numbers;
}

double ParseUnits(const std::string& text) {
    const double value = ParseNumber(text);
    if (value <= 0 && value != -1)
        throw UsageError("is no size of a tile; give map units above 0, or -1 for the whole axis");
    return value;
}

std::pair<Long, Long> ParsePixels(const std::string& option, const std::string& text) {
    const auto cross = text.find('x');
    const auto parse = [&](const std::string& part) {
        Long value = 0;
        if (Read(part, value) != std::errc() || value < 1)
            throw UsageError(option + " \"" + text +
                             "\" is no size of a tile; give pixels, for example 256 or 256x512");
        return value;
    };
    if (cross == std::string::npos) return {parse(text), parse(text)};
    return {parse(text.substr(0, cross)), parse(text.substr(cross + 1))};
}

std::vector<int> ParseBands(const std::string& text) {
    std::vector<int> bands;
    std::istringstream parts(text + ",");
    for (std::string part; std::getline(parts, part, ',');) {
        Long band = 0;
        if (Read(part, band) != std::errc() || band < 1)
            throw UsageError("is no list of bands; give numbers from 1 on with commas, for example 4,3,2");
        bands.push_back(band);
    }
    return bands;
}

std::string ProgramName() {
    return "orvo-tile " + std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
           std::to_string(kVersionRevision);
}

std::string ParseProgram(const std::string& text) {
    if (text.find('/') != std::string::npos) {
        if (IsProgram(text)) return text;
        throw UsageError("is not a program that can be run; check the path");
    }
    const char* path = std::getenv("PATH");
    std::istringstream folders(path == nullptr ? "/usr/bin:/bin" : path);
    for (std::string folder; !text.empty() && std::getline(folders, folder, ':');) {
        if (IsProgram((folder.empty() ? "." : folder) + "/" + text)) return text;
    }
    throw UsageError("is not found along PATH; install it or give its full path");
}

std::string ParsePrefix(const std::string& text) {
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7f; };
    const bool odd = text.starts_with('.') || text.find_first_of("/\\") != std::string::npos ||
                     std::any_of(text.begin(), text.end(), isControl);
    if (odd || text.size() > 200)
        throw UsageError(
            "cannot begin the name of a file: give up to 200 bytes without slashes and control characters, "
            "not beginning with a dot");
    return text;
}

void BeginGroup(CLI::App& command, const std::string& title) {
    command.option_defaults()->group(title);
}

void AddDialogOptions(CLI::App& command, SessionOptions& options) {
    BeginGroup(command, "Messages and failures");
    AddChoice<Language>(command, "--language", options.language,
                        {{"", Language::Locale},
                         {"de", Language::German},
                         {"en", Language::English},
                         {"fr", Language::French}},
                        "Language of messages, where it is not the locale's");
    AddChoice<dialog::Policy>(
        command, "--on-error", options.policy,
        {{"ask", dialog::Policy::Ask}, {"next", dialog::Policy::Next}, {"leave", dialog::Policy::Leave}},
        "How a failing step goes on: ask, next statement, or leave the procedure; ask without anybody to "
        "answer leaves");
    AddChoice<DialogPlace>(
        command, "--dialog", options.place,
        {{"auto", DialogPlace::Auto}, {"window", DialogPlace::Window}, {"terminal", DialogPlace::Terminal}},
        "Where to ask; auto takes a window where there is a display and no terminal");
}

void AddRunOptions(CLI::App& command, SessionOptions& options, bool& overwrite) {
    BeginGroup(command, "Run");
    command.add_flag("--overwrite", overwrite, "Remove the files of an earlier run from OUTDIR first");
    AddNarration(command, options);
    AddDialogOptions(command, options);
}

void AddNarration(CLI::App& command, SessionOptions& options) {
    AddChoice<ProgressMode>(
        command, "--progress", options.progress,
        {{"auto", ProgressMode::Auto},
         {"bar", ProgressMode::Bar},
         {"json", ProgressMode::Json},
         {"none", ProgressMode::None}},
        "On standard error; auto draws a bar on a terminal, json gives one object per line");
    command.add_flag("-q,--quiet", options.quiet, "Say nothing on standard error but errors");
}

namespace {

std::vector<std::string>& Words() {
    static std::vector<std::string> words;
    return words;
}

}  // namespace

void KeepCommandLine(int count, char** values) {
    Words().assign(values, values + count);
}

const std::vector<std::string>& CommandLine() {
    return Words();
}

void AddHelp(CLI::App& command) {
    BeginGroup(command, "Help");
    command.set_help_flag("-h,--help", "Print this help and exit");
}

}  // namespace orvo::host
