// How conversion programs are called.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/RasterIO.h"
#include "platform/raster/ImageFormat.h"

namespace orvo::utility {

/// One call of a program. Source and target begin with "./" and hold letters, digits and dots only.
struct Conversion {
    std::string program;
    std::string source;
    std::string target;
    int quality = raster::kDefaultQuality;  ///< 1 to 100
    std::optional<ImageLayout> layout;      ///< of the source, where it is known
};

/// "convert" for "/usr/bin/convert-im6.q16" and "convert.exe"; empty for a program that is not known.
std::string KnownConverter(const std::string& program);

/// The arguments for converting the first image of the source. GDAL's translator, ImageMagick, GraphicsMagick
/// and vips are known by the program's file name, also with a version behind it, and hear the quality where
/// the target's format has losses; any other program gets source, target and quality.
std::vector<std::string> ConverterArguments(const Conversion& conversion);

}  // namespace orvo::utility
