// The platform of a run.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/ProgressDisplay.h"
#include "platform/console/Desktop.h"
#include "platform/utility/Settings.h"

namespace orvo::host {

/// Installs the real platform: failures are shown on standard error and answered by the policy or at the
/// terminal; the bar makes room for them; Ctrl-C ends the run.
/// @param onFailure hears each failure that is shown
/// @param services language and who hears the services; their interruption is set here
std::shared_ptr<console::Desktop> InstallPlatform(console::Policy policy, ProgressDisplay& progress,
                                                  std::function<void(const std::string&)> onFailure,
                                                  utility::Settings services);

}  // namespace orvo::host
