// How the help of a command looks.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace orvo::host {

/// "--quality 1-100 [75]": the values of an option, then its default; descriptions in lines of at most 80
/// characters.
class HelpFormat final : public CLI::Formatter {
  public:
    std::string make_help(const CLI::App* command, std::string name, CLI::AppFormatMode mode) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_usage(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
};

}  // namespace orvo::host
