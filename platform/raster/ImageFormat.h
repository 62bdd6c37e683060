// The image formats that are written in process, by the names of their files.
#pragma once

#include <optional>
#include <string>

#include "platform/Types.h"

namespace orvo::raster {

enum class ImageFormat { Png, Jpeg, Gif, Bmp, Tiff };

/// How long an encoder without losses looks for fewer bytes.
enum class Effort { Fast, Normal, Small };

/// A file name: everything before the dot of its extension, and the extension in lower case.
struct TargetName {
    std::string stem;
    std::string extension;
};

TargetName SplitName(const std::string& file);

/// @param extension in lower case, without dot; nothing where the format is another one
std::optional<ImageFormat> FormatOf(const std::string& extension);

constexpr Integer kDefaultQuality = 75;

/// 1 to 100; 0 stands for the default.
Integer QualityOf(Integer quality);

}  // namespace orvo::raster
