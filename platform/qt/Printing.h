// Lines of text on paper.
#pragma once

#include <QStringList>
#include <string>
#include <vector>

class QPrinter;

namespace orvo::qt {

/// A line for paper of so many columns: tabs stand for blanks up to the next multiple of 8, and what goes
/// past the paper's edge continues on further lines.
QStringList PaperLines(const QString& line, int columns);

/// Prints lines in a monospaced font, page by page, as one document; fails with number 482.
void PrintLines(QPrinter& printer, const std::vector<std::string>& lines);

/// The same on the default printer.
void PrintOnDefault(const std::vector<std::string>& lines, const std::string& documentName);

}  // namespace orvo::qt
