// Option values as text, and what they stand for. All fail with UsageError.
#pragma once

#include <string>

#include "platform/Types.h"

namespace orvo::host {

/// Whole map units from 1 on, or −1 for a whole axis.
Long ParseSize(const std::string& option, const std::string& text);
/// A number of columns or rows, from 1 on.
Long ParseCount(const std::string& option, const std::string& text);
/// A finite number with a decimal point.
double ParseNumber(const std::string& option, const std::string& text);
/// 1 to 100.
Integer ParseQuality(const std::string& text);
/// A bare extension in lower case; a leading dot is dropped, "jpeg" and "tiff" become "jpg" and "tif".
std::string ParseFormat(const std::string& text);
/// 0 for de, 10000 for en, 20000 for fr; an empty text asks the locale.
Integer ParseLanguage(const std::string& text);

/// Names are composed with "\" for a separator, so no path may hold one.
void RefuseBackslash(const std::string& what, const std::string& path);
/// The path of a program; fails where it is neither an executable file nor found along PATH.
std::string FindProgram(const std::string& option, const std::string& program);

}  // namespace orvo::host
