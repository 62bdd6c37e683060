// Reading lines from the user's terminal.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace orvo::console {

/// Gives the next line without its end; nothing at the end of input, or when a signal breaks the waiting.
using LineReader = std::function<std::optional<std::string>()>;

/// A reader of the terminal in front of the user: standard input where it is one, else the controlling
/// terminal. Empty where nobody could see a question on standard error or answer it, also in a background
/// job.
LineReader TerminalReader();

}  // namespace orvo::console
