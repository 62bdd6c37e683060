// Options: what every command has, and how texts become the values of a job.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/Session.h"
#include "platform/Types.h"
#include "tiling/Errors.h"

namespace orvo::host {

/// What is added to a command from here on stands in the help under this title, in the order of the titles'
/// first use.
void BeginGroup(CLI::App& command, const std::string& title);

/// The help's word for a value.
template <class Value>
constexpr const char* TypeName() {
    if (std::is_integral_v<Value>) return "N";
    return std::is_floating_point_v<Value> ? "NUMBER" : "TEXT";
}

/// An option whose text becomes a value as the command line is read. The help calls it N, NUMBER or TEXT by
/// the type of the value; the result's type_name() says more.
/// @param parse fails with UsageError; its text goes behind the option's name and the text given
template <class Value, class Parse>
CLI::Option* AddValue(CLI::App& command, const std::string& name, Value& value, Parse parse,
                      const std::string& description) {
    const std::string label = name.substr(name.find_last_of(',') + 1);
    CLI::Option* const option = command.add_option_function<std::string>(
        name,
        [label, &value, parse](const std::string& text) {
            try {
                value = parse(text);
            } catch (const tiling::UsageError& error) {
                throw tiling::UsageError(label + " \"" + text + "\" " + error.what());
            }
        },
        description);
    return option->type_name(TypeName<Value>());
}

/// An option that takes one of some words, which the help shows. @param words the default first; an empty one
/// is not named to users
template <class Value>
CLI::Option* AddChoice(CLI::App& command, const std::string& name, Value& value,
                       std::vector<std::pair<std::string, Value>> words, const std::string& description) {
    const std::string usual = words.front().first;
    value = words.front().second;
    std::string shown;
    for (const auto& [word, ignored] : words)
        if (!word.empty()) shown += (shown.empty() ? "" : "|") + word;
    const auto parse = [words = std::move(words)](const std::string& text) {
        std::string known;
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (words[i].first == text) return words[i].second;
            known += (known.empty() ? "" : i + 1 == words.size() ? " or " : ", ") + words[i].first;
        }
        throw tiling::UsageError("is not known; choose " + known);
    };
    return AddValue(command, name, value, parse, description)->type_name(shown)->default_str(usual);
}

// Parsers. All fail with UsageError, whose text says what the value is not, and the remedy.

/// Whole map units from 1 on, or −1 for a whole axis.
Long ParseSize(const std::string& text);
/// A number of columns or rows, from 1 on.
Long ParseCount(const std::string& text);
/// A finite number with a decimal point.
double ParseNumber(const std::string& text);
/// The same for several, whose option is named.
std::vector<double> ParseNumbers(const std::string& option, const std::vector<std::string>& texts);
/// Map units above 0, or −1 for a whole axis.
double ParseUnits(const std::string& text);
/// "256" or "256x512", from 1 on: width and height.
std::pair<Long, Long> ParsePixels(const std::string& option, const std::string& text);
/// "4,3,2".
std::vector<int> ParseBands(const std::string& text);
/// 1 to 100.
Integer ParseQuality(const std::string& text);
int ParseJobs(const std::string& text);
/// The path of a program that is an executable file or found along PATH.
std::string ParseProgram(const std::string& text);
/// A text that can begin the name of a file.
std::string ParsePrefix(const std::string& text);

/// Name and version, as --version says them.
std::string ProgramName();

/// --language, --on-error and --dialog, in a group of their own.
void AddDialogOptions(CLI::App& command, SessionOptions& options);
/// The words that this process was started with.
void KeepCommandLine(int count, char** values);
const std::vector<std::string>& CommandLine();

/// --progress and --quiet, in the group that was begun.
void AddNarration(CLI::App& command, SessionOptions& options);
/// --overwrite, --progress and --quiet in a group, then the dialog's.
void AddRunOptions(CLI::App& command, SessionOptions& options, bool& overwrite);
/// --help, last of all.
void AddHelp(CLI::App& command);

}  // namespace orvo::host
