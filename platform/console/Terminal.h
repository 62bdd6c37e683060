// The user's terminal: reading lines from it, and what it can.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/console/Delivery.h"

namespace orvo::console {

/// Gives the next line without its end; nothing at the end of input, or when a signal breaks the waiting.
using LineReader = std::function<std::optional<std::string>()>;

/// A reader of the terminal in front of the user: standard input where it is one, else the controlling
/// terminal. Empty where nobody could see a question on standard error or answer it, also in a background
/// job.
LineReader TerminalReader();

/// The clipboard of the terminal that standard error goes to, as the environment describes it. A terminal may
/// still not take what it is sent; it gives no answer.
Clipboard TerminalClipboard();

}  // namespace orvo::console
