#include "platform/raster/ImageFormat.h"

#include <algorithm>

namespace orvo::raster {

TargetName SplitName(const std::string& file) {
    const auto slash = file.find_last_of("/\\");
    const auto dot = file.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return {file, ""};
    std::string extension = file.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return {file.substr(0, dot), extension};
}

std::optional<ImageFormat> FormatOf(const std::string& extension) {
    if (extension == "png") return ImageFormat::Png;
    if (extension == "jpg" || extension == "jpeg") return ImageFormat::Jpeg;
    if (extension == "gif") return ImageFormat::Gif;
    if (extension == "bmp") return ImageFormat::Bmp;
    if (extension == "tif" || extension == "tiff") return ImageFormat::Tiff;
    return std::nullopt;
}

Integer QualityOf(Integer quality) {
    return quality == 0 ? kDefaultQuality : std::clamp<Integer>(quality, 1, 100);
}

}  // namespace orvo::raster
