// What the process that hosts the utility library tells it and hears from it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Types.h"
#include "platform/Utility.h"

namespace orvo::utility {

/// The part of a layer that an image shows: xMin, yMin, xMax, yMax in map units, and its size in pixels.
struct ImageExtent {
    double xMin, yMin, xMax, yMax;
    Long width, height;
};

/// What a service was asked to write: a window of the source, cell by cell, or an extent of a layer,
/// resampled to the image's size. A conversion of a whole image that was exported before is about that one's
/// extent; of any other image, about neither.
struct Request {
    std::string target;  ///< full path
    std::optional<PixelWindow> window;
    std::optional<ImageExtent> extent;
};

/// An image that a service has written.
struct WrittenImage {
    std::string path;
    Request asked;
    std::optional<PixelWindow> window;  ///< as it was asked for, cut back to the raster
    std::optional<ImageExtent> extent;
};

struct Settings {
    Integer languageOffset = 0;  ///< 0 German, 10000 English, 20000 French
    /// True once the user has interrupted the process; services then fail with number 18 and leave nothing.
    std::function<bool()> interrupted = [] { return false; };
    /// Hears why a target was not written. The last lines of a failing program are part of the reason.
    std::function<void(const Request& asked, const std::string& reason)> onFailure =
        [](const Request&, const std::string&) {};
    std::function<void(const WrittenImage& image)> onWritten = [](const WrittenImage&) {};
};

}  // namespace orvo::utility
