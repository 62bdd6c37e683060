// How a report leaves the terminal: printer, clipboard, the user's own programs.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Process.h"

namespace orvo::console {

/// Fails with number 482 and a text in the language of the day.
[[noreturn]] void FailPrinting(const std::string& why);

/// Prints lines of UTF-8 on the default printer through lp, else lpr. Number 482 where neither is there, none
/// prints, or none is done within 20 seconds; the text says what to do, in the language of the day.
void PrintLines(IProcessRunner& runner, const std::vector<std::string>& lines,
                const std::function<bool()>& interrupted);

/// How the clipboard is reached: not at all, by the terminal's own sequence, or by that passed through a
/// terminal multiplexer.
enum class Clipboard { None, Terminal, Tmux, Screen };

/// The sequence that puts text on the terminal's clipboard; empty for None.
std::string ClipboardSequence(std::string_view text, Clipboard clipboard);

/// Starts the user's own program for an address, and leaves it running. False where none is there or it gave
/// up at once.
/// @param browser the value of the variable BROWSER; serves for web addresses where xdg-open is missing
bool OpenAddress(IProcessRunner& runner, const std::string& address, const std::string& browser);

}  // namespace orvo::console
