// Whether two image files show the same.
#pragma once

#include <string>

namespace orvo::gdal {

/// Compares every pixel's colour and transparency, whether it is stored as grey, colours or palette, with 8
/// bits or 16; cells of other types by their values. @return why they differ; empty where they do not
std::string DifferenceOfImages(const std::string& original, const std::string& copy);

}  // namespace orvo::gdal
