// What the process that hosts the utility library tells it and hears from it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Types.h"
#include "platform/Utility.h"

namespace orvo::utility {

/// An image that a service has written, and which pixels it shows: a window of the source, cell by cell, or
/// the extent (xMin, yMin, xMax, yMax in map units) of a layer, resampled to the image's size.
struct WrittenImage {
    std::string path;
    std::optional<PixelWindow> window;
    struct Extent {
        double xMin, yMin, xMax, yMax;
        Long width, height;  ///< pixels
    };
    std::optional<Extent> extent;
};

struct Settings {
    Integer languageOffset = 0;  ///< 0 German, 10000 English, 20000 French
    /// True once the user has interrupted the process; services then fail with number 18 and leave nothing.
    std::function<bool()> interrupted = [] { return false; };
    /// Hears why a target was not written. The last lines of a failing program are part of the reason.
    std::function<void(const std::string& target, const std::string& reason)> onFailure =
        [](const std::string&, const std::string&) {};
    std::function<void(const WrittenImage& image)> onWritten = [](const WrittenImage&) {};
};

}  // namespace orvo::utility
