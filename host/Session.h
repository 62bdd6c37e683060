// The platform of a run.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/ProgressDisplay.h"
#include "host/WatchedDesktop.h"
#include "platform/utility/Settings.h"

namespace orvo::host {

/// Installs the real platform: failures are shown and answered as `handling` says; the bar makes room for
/// them; Ctrl-C ends the run. Fails with UsageError where a window is demanded and none can be had.
/// @param onFailure hears each failure that is shown
/// @param services language and who hears the services; their interruption is set here
std::shared_ptr<WatchedDesktop> InstallPlatform(const FailureHandling& handling, ProgressDisplay& progress,
                                                std::function<void(const std::string&)> onFailure,
                                                utility::Settings services);

}  // namespace orvo::host
