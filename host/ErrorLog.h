// The files that the error dialog writes, as the user meets them.
#pragma once

#include <string>

#include "platform/Platform.h"

namespace orvo::host {

/// The log of all reports and the report that was saved last, as the system writes their paths, links
/// resolved. Fail where there is no folder for them.
std::string ErrorLogPath();
std::string SavedReportPath();

/// A text that names one of these files, with its path as the system writes it.
std::string WithSystemPaths(std::string text);

/// Where a failure cannot be logged, the failure of the log names it, too, so that none is lost.
void TellOfLog(platform::Platform& platform);

}  // namespace orvo::host
