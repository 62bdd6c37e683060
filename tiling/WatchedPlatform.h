// The installed platform as a run sees it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Platform.h"
#include "platform/gdal/RasterIO.h"
#include "platform/utility/Settings.h"
#include "tiling/WatchedDesktop.h"

namespace orvo::tiling {

/// While it lives, the platform's desktop and services tell a run what happens and end when it is
/// interrupted. Conversion and free names come from the services of this library, in the installed platform's
/// language; all else is the installed platform's own. Afterwards that is back as it was.
class WatchedPlatform {
  public:
    struct Events {
        /// Each failure that is shown, as "number (description)".
        std::function<void(const std::string& failure)> onFailureShown = [](const std::string&) {};
        /// An envelope is made; the walk over a raster's grid makes one for each cell.
        std::function<void()> onNewEnvelope = [] {};
        /// Reads and writes pixels for the services.
        platform::Maker<IRasterIO> newRasterIO = gdal::NewRasterIO;
        /// Stand before the services for names, and for export and conversion.
        std::function<std::shared_ptr<IUtilTools>(std::shared_ptr<IUtilTools>)> named =
            [](std::shared_ptr<IUtilTools> service) { return service; };
        std::function<std::shared_ptr<IRasterConvert>(std::shared_ptr<IRasterConvert>)> served =
            [](std::shared_ptr<IRasterConvert> service) { return service; };
        utility::Settings services;  ///< who hears the services; language and interruption are not used
    };

    /// Fails with RunError where no platform is installed.
    WatchedPlatform(const std::function<bool()>& interrupted, Events events);
    ~WatchedPlatform();
    WatchedPlatform(const WatchedPlatform&) = delete;
    WatchedPlatform& operator=(const WatchedPlatform&) = delete;

    int FailuresShown() const { return desktop_->FailuresShown(); }
    /// Failures and messages.
    int Shown() const { return desktop_->FailuresShown() + desktop_->MessagesShown(); }

  private:
    platform::Platform installed_;
    std::shared_ptr<WatchedDesktop> desktop_;
};

}  // namespace orvo::tiling
