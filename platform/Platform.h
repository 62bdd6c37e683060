// The platform that the process runs on. The face that starts the process installs it once.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/Desktop.h"
#include "platform/Geometry.h"
#include "platform/Raster.h"
#include "platform/RuntimeError.h"
#include "platform/Scripting.h"
#include "platform/System.h"
#include "platform/Utility.h"

namespace orvo::platform {

template <class Interface>
using Maker = std::function<std::shared_ptr<Interface>()>;

/// Makers give a new object per call; services live as long as the process uses the platform.
struct Platform {
    Maker<IEnvelope> newEnvelope;
    Maker<IDictionary> newDictionary;
    Maker<IFileSystemObject> newFileSystemObject;
    Maker<IUtilTools> newUtilTools;
    Maker<IRasterConvert> newRasterConvert;
    Maker<IRasterWorkspaceFactory> newRasterWorkspaceFactory;
    std::shared_ptr<IRegistry> registry;
    std::shared_ptr<IClock> clock;
    std::shared_ptr<IOperatingSystem> operatingSystem;
    std::shared_ptr<ITextFiles> textFiles;
    std::shared_ptr<IDesktop> desktop;
    std::string decimalSeparator = ".";  ///< of the user's locale
};

/// The platform in use; empty until one is installed.
inline Platform& Current() {
    static Platform current;
    return current;
}

/// Replaces the platform. Objects handed out before stay valid.
inline void Install(Platform platform) {
    Current() = std::move(platform);
}

/// A new object from a maker, as a class factory would give it; number 429 where there is none.
template <class Interface>
std::shared_ptr<Interface> Create(const Maker<Interface>& maker) {
    std::shared_ptr<Interface> object = maker ? maker() : nullptr;
    if (!object) throw RuntimeError(Fault::CannotCreateObject);
    return object;
}

}  // namespace orvo::platform
