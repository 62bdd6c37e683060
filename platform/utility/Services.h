// The utility library, put together.
#pragma once

#include <memory>

#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/RasterIO.h"
#include "platform/utility/Settings.h"

namespace orvo::utility {

/// Makers of service objects that share their state while any of them lives.
struct Services {
    platform::Maker<IUtilTools> newUtilTools;
    platform::Maker<IRasterConvert> newRasterConvert;
};

/// @param newRasterIO makes one object per conversion service, which keeps its source open
Services MakeServices(const Settings& settings, platform::Maker<IRasterIO> newRasterIO,
                      std::shared_ptr<IProcessRunner> runner);

}  // namespace orvo::utility
