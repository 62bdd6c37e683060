// What is said of words on the command line that nothing takes.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace orvo::host {

/// The message for a command line that cannot be read. An unknown command or option is named, with the known
/// one that it is likely a slip of; anything else is told in the parser's words.
/// @param application after the parse that failed
std::string Explain(const CLI::App& application, const CLI::ParseError& error);

}  // namespace orvo::host
