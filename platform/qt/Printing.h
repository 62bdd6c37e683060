// Lines of text on paper.
#pragma once

#include <string>
#include <vector>

class QPrinter;

namespace orvo::qt {

/// Prints lines in a monospaced font, page by page, as one document. What goes past the paper's edge
/// continues on further lines. Fails with number 482 where the printer does not take the document.
void PrintLines(QPrinter& printer, const std::vector<std::string>& lines);

/// The same on the default printer.
void PrintOnDefault(const std::vector<std::string>& lines, const std::string& documentName);

}  // namespace orvo::qt
