// The toolkit's application object, which every window needs.
#pragma once

#include <functional>
#include <string>

namespace orvo::qt {

/// Uses the application of the process where one runs, else makes one that lives to the end of the process.
/// The process's locale stays as it is. False, and why, where there can be no window.
bool EnsureApplication(const std::function<std::string()>& displayTrouble, std::string& whyNot);

/// Fails on a thread that may not use windows.
void CheckThread();

}  // namespace orvo::qt
