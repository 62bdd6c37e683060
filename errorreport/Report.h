// The error report as text, and as lines on paper.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "errorreport/CallStackList.h"
#include "platform/Dialog.h"
#include "platform/System.h"

namespace orvo {

/// What a report takes from the system.
struct ReportFacts {
    LocalTime time;
    OSVersion system;
};

/// The report on the failure that the dialog shows, with its captions as they stand. Lines end in CR LF.
std::string ReportText(const Form& dialog, const CallStackList& callStack, const ReportFacts& facts);

/// The lines that a printer gets for a text whose lines end in CR LF: wrapped between words after 73
/// characters (code points), what continues a line behind 20 blanks that do not count. Text behind the last
/// CR LF is not printed.
std::vector<std::string> PrinterLines(std::string_view text);

}  // namespace orvo
