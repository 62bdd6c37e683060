// What the service objects of the utility library know of each other.
#pragma once

#include <map>
#include <string>

#include "platform/utility/Reservations.h"
#include "platform/utility/Settings.h"

namespace orvo::utility {

/// Held by every service object, so it ends with the last of them.
struct SharedState {
    Reservations reservations;
    std::map<std::string, ImageExtent> exported;  ///< TIFFs that may be converted, by path on the disk
};

}  // namespace orvo::utility
