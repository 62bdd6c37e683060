#include "host/HelpFormat.h"

#include <sstream>
#include <utility>

namespace orvo::host {
namespace {

constexpr std::size_t kLineWidth = 80;

/// What follows the name of an argument that takes several words: "... OUTDIR".
std::string RestOf(const CLI::Option& argument) {
    return argument.get_expected_max() > 1 ? argument.get_type_name() : "";
}

}  // namespace

std::string HelpFormat::make_help(const CLI::App* command, std::string name, CLI::AppFormatMode mode) const {
    const std::string help = Formatter::make_help(command, std::move(name), mode);
    return CLI::detail::find_and_replace(help, "\n\n\n", "\n\n");
}

std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
    if (!option->nonpositional()) return RestOf(*option);
    const bool isFlag = option->get_type_size() == 0;
    if (isFlag) return "";
    const std::string usual = option->get_default_str();
    return " " + option->get_type_name() + (usual.empty() ? "" : " [" + usual + "]");
}

std::string HelpFormat::make_option_usage(const CLI::Option* option) const {
    return option->get_name(true) + RestOf(*option);
}

std::string HelpFormat::make_option_desc(const CLI::Option* option) const {
    const std::size_t width = kLineWidth - get_column_width();
    std::istringstream words(option->get_description());
    std::string lines;
    std::size_t used = 0;
    for (std::string word; words >> word; used += word.size()) {
        const bool isFirst = lines.empty();
        const bool fits = used + 1 + word.size() <= width;
        if (!isFirst) lines += fits ? ' ' : '\n';
        used = fits && !isFirst ? used + 1 : 0;
        lines += word;
    }
    return lines;
}

}  // namespace orvo::host
