// Printing text.
#pragma once

#include <string>
#include <vector>

namespace orvo::windows {

/// Prints lines of UTF-8 as one document on the user's default printer, in a type of one width. Fails with
/// number 482 where there is no default printer or it does not print; then nothing is printed.
void PrintOnDefaultPrinter(const std::vector<std::string>& lines);

}  // namespace orvo::windows
