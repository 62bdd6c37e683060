#include "host/Session.h"

#include <iostream>
#include <utility>

#include "host/Interrupt.h"
#include "platform/real/Platform.h"

namespace orvo::host {

std::shared_ptr<console::Desktop> InstallPlatform(console::Policy policy, ProgressDisplay& progress,
                                                  std::function<void(const std::string&)> onFailure,
                                                  utility::Settings services) {
    console::DesktopOptions shown;
    shown.out = &std::cerr;
    shown.read = console::TerminalReader();
    shown.policy = policy;
    shown.prefix = "orvo-tile: ";
    shown.interrupted = Interrupted;
    shown.makeRoom = [&progress] { progress.MakeRoom(); };
    shown.onFailure = std::move(onFailure);
    auto desktop = std::make_shared<console::Desktop>(std::move(shown));
    real::Options options;
    options.desktop = desktop;
    options.services = std::move(services);
    options.services.interrupted = Interrupted;
    platform::Install(real::MakePlatform(std::move(options)));
    return desktop;
}

}  // namespace orvo::host
