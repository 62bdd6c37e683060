#include "tiling/WatchedPlatform.h"

#include <utility>

#include "platform/posix/ProcessRunner.h"
#include "platform/utility/Services.h"
#include "tiling/Errors.h"

namespace orvo::tiling {

WatchedPlatform::WatchedPlatform(const std::function<bool()>& interrupted, Events events)
    : installed_(platform::Current()) {
    if (!installed_.desktop || !installed_.newUtilTools || !installed_.newEnvelope)
        throw RunError("no platform is installed; install one first, such as linux_platform::MakePlatform()");
    desktop_ = std::make_shared<WatchedDesktop>(
        installed_.desktop, WatchedDesktop::Watch{std::move(events.onFailureShown), interrupted});
    utility::Settings services = std::move(events.services);
    services.languageOffset = installed_.newUtilTools()->GetLanguageOffset();
    services.interrupted = interrupted;
    auto made = utility::MakeServices(services, std::move(events.newRasterIO),
                                      std::make_shared<posix::ProcessRunner>());
    platform::Platform watched = installed_;
    watched.desktop = desktop_;
    watched.newUtilTools = [make = std::move(made.newUtilTools), name = std::move(events.named)] {
        return name(make());
    };
    watched.newRasterConvert = [make = std::move(made.newRasterConvert), serve = std::move(events.served)] {
        return serve(make());
    };
    watched.newEnvelope = [interrupted, newEnvelope = installed_.newEnvelope,
                           heard = std::move(events.onNewEnvelope)] {
        if (interrupted()) throw RuntimeError(Fault::UserInterrupt);
        heard();
        return newEnvelope();
    };
    platform::Install(std::move(watched));
}

WatchedPlatform::~WatchedPlatform() {
    platform::Install(std::move(installed_));
}

}  // namespace orvo::tiling
