// What the service objects of the utility library know of each other.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/RasterIO.h"
#include "platform/utility/Reservations.h"
#include "platform/utility/Settings.h"

namespace orvo::utility {

/// Held by every service object, so it ends with the last of them.
struct Library {
    Reservations reservations;
    std::map<std::string, ImageExtent> exported;  ///< TIFFs that may be converted, by path on the disk
};

/// Makers of service objects that share a library while any of them lives.
struct Services {
    platform::Maker<IUtilTools> newUtilTools;
    platform::Maker<IRasterConvert> newRasterConvert;
};

/// @param newRasterIO makes one object per conversion service, which keeps its source open
Services MakeServices(const Settings& settings, platform::Maker<IRasterIO> newRasterIO,
                      std::shared_ptr<IProcessRunner> runner);

}  // namespace orvo::utility
