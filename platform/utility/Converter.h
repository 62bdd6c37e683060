// How conversion programs are called.
#pragma once

#include <string>
#include <vector>

#include "platform/Types.h"

namespace orvo::utility {

/// The arguments for converting the first image of `source`. GDAL's translator, ImageMagick, GraphicsMagick
/// and vips are known by the program's file name, also with a version behind it; any other program gets
/// source, target and quality.
/// @param source, target begin with "./" and hold letters, digits, dots and hyphens only
/// @param quality 1 to 100; the known programs hear it where the target's format has losses
std::vector<std::string> ConverterArguments(const std::string& program, const std::string& source,
                                            const std::string& target, int quality);

}  // namespace orvo::utility
