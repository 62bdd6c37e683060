// The runtime's text rules, on UTF-8. Searches and comparisons are binary, so case counts.
#pragma once

#include <string>
#include <string_view>

#include "platform/System.h"

namespace orvo {

/// Lower and upper case of ASCII, Latin-1 and Latin Extended-A; every other character stays. "ß" stays.
std::string LCase(std::string_view text);
std::string UCase(std::string_view text);

/// The first `count` characters (code points); the whole text where it is shorter.
std::string Left(std::string_view text, std::size_t count);

/// The text behind the last occurrence of `mark`; the whole text where it does not occur.
std::string AfterLast(std::string_view text, char mark);

/// The text without the blanks before and behind it; other white space stays, unless it is named.
std::string_view Trim(std::string_view text, std::string_view blanks = " ");

/// A text as a terminal may show it: control characters other than tabs and line ends become "?", those of
/// the second set (U+0080 to U+009F) too. @param lineEnd takes the place of line ends
std::string Printable(std::string_view text, char lineEnd = '\n');

/// A double in the runtime's standard form: up to 15 significant digits, no thousands separator.
std::string NumberText(double value, std::string_view decimalSeparator);

/// Whether a text reads as a number in the form [blanks][sign]digits[.digits][E[sign]digits][blanks],
/// blanks being tabs, too, and the digits before or behind the point missing.
bool IsNumeric(std::string_view text);

/// "hh:nn:ss" and "hhnnss" on the 24-hour clock.
std::string ClockText(const LocalTime& time);
std::string CompactClockText(const LocalTime& time);

}  // namespace orvo
