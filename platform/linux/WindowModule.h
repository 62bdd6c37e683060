// The desktop with real windows, brought in only when a window is needed.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/qt/Module.h"

namespace orvo::linux_platform {

/// Opens the window module and gives its desktop; null where this machine has no display, no window toolkit
/// or no module, and then `whyNot` says so in one line. Takes a tenth of a second or more: see
/// WindowOnDemand. The desktop serves the thread that called this, or the thread of an application of the
/// toolkit that runs already.
std::shared_ptr<IDesktop> LoadWindowDesktop(const WindowOptions& options, std::string& whyNot);

/// A desktop that opens the window module on its first use, and sends everything to `otherwise` where that is
/// not possible. Costs nothing as long as nothing fails.
/// @param otherwise not null
/// @param onUnavailable hears once why there is no window
std::shared_ptr<IDesktop> WindowOnDemand(
    WindowOptions options, std::shared_ptr<IDesktop> otherwise,
    std::function<void(const std::string& whyNot)> onUnavailable = [](const std::string&) {});

/// Whether a display is named in the environment. Fast; whether it answers is another matter.
bool DisplayNamed();

}  // namespace orvo::linux_platform
