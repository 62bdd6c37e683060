#include "host/Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "support/Text.h"

namespace orvo::host {
namespace {

constexpr std::size_t kLongest = 40;  ///< letters of a word that may be a slip; no name is as long

/// A name as it is written, and the part of it that is compared.
struct Known {
    std::string written;
    std::string bare;
};

std::string WithoutDashes(const std::string& word) {
    return LCase(word.substr(std::min(word.find_first_not_of('-'), word.size())));
}

/// How many letters are put in, left out, replaced or swapped with their neighbour.
std::size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t k = 0; k <= b.size(); ++k) {
            if (i == 0 || k == 0) {
                cost[i][k] = i + k;
                continue;
            }
            const std::size_t same = cost[i - 1][k - 1] + (a[i - 1] == b[k - 1] ? 0 : 1);
            cost[i][k] = std::min({same, cost[i - 1][k] + 1, cost[i][k - 1] + 1});
            if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1])
                cost[i][k] = std::min(cost[i][k], cost[i - 2][k - 2] + 1);
        }
    }
    return cost.back().back();
}

/// The known name nearest to a word as a question; empty where more than about a third of the letters differ.
std::string DidYouMean(const std::string& word, const std::vector<Known>& names) {
    if (word.size() > kLongest) return "";
    const std::string bare = WithoutDashes(word);
    const Known* nearest = nullptr;
    std::size_t least = 0;
    for (const Known& name : names) {
        const std::size_t distance = EditDistance(bare, name.bare);
        const bool near = distance <= (std::max(bare.size(), name.bare.size()) + 1) / 3;
        if (!near || (nearest != nullptr && distance >= least)) continue;
        nearest = &name;
        least = distance;
    }
    return nearest == nullptr ? "" : "; did you mean " + nearest->written + "?";
}

std::vector<Known> Commands(const CLI::App& application) {
    std::vector<Known> names;
    for (const CLI::App* command : application.get_subcommands({}))
        names.push_back({command->get_name(), command->get_name()});
    return names;
}

std::vector<Known> Options(const CLI::App& command) {
    std::vector<Known> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back({"--" + name, name});
    }
    return names;
}

/// The first word that is written as an option and is none; without its "=VALUE".
std::optional<std::string> UnknownOption(const CLI::App& command) {
    const std::vector<std::string> words = command.remaining();
    const auto isOption = [](const std::string& word) { return word.size() > 1 && word.starts_with('-'); };
    const auto found = std::ranges::find_if(words, isOption);
    return found == words.end() ? std::nullopt : std::optional(found->substr(0, found->find('=')));
}

std::string OptionMessage(const CLI::App& command, const std::string& option, const std::string& call) {
    return '"' + option + "\" is no option of " + command.get_name() + DidYouMean(option, Options(command)) +
           " (" + call + " --help lists them)";
}

}  // namespace

std::string Explain(const CLI::App& application, const CLI::ParseError& error) {
    const std::string& program = application.get_name();
    const bool aboutWords = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr ||
                            dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    const std::vector<std::string> words = application.remaining();
    const auto parsed = application.get_subcommands();
    if (aboutWords && parsed.empty() && !words.empty() && !words.front().starts_with('-')) {
        return '"' + words.front() + "\" is no command" + DidYouMean(words.front(), Commands(application)) +
               " (" + program + " --help lists them)";
    }
    if (aboutWords) {
        if (const auto option = UnknownOption(application))
            return OptionMessage(application, *option, program);
        for (const CLI::App* command : parsed) {
            if (const auto option = UnknownOption(*command))
                return OptionMessage(*command, *option, program + " " + command->get_name());
        }
    }
    return std::string(error.what()) + " (" + program + " --help and " + program + " COMMAND --help explain)";
}

}  // namespace orvo::host
