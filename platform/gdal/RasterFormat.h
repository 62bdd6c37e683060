// The raster formats that the library can write.
#pragma once

#include <string>
#include <vector>

namespace orvo::gdal {

struct RasterFormat {
    std::string driver;     ///< the library's name, for example "GTiff"
    std::string extension;  ///< of its files, lower case, without dot
};

/// @param text a name or an extension, whatever the case. Fails with number 440 and names the formats that
/// there are.
RasterFormat FindRasterFormat(const std::string& text);

/// Fails with number 440 where the format knows no such options, or not those values.
/// @param options NAME=VALUE, as the library's tools take them
void CheckOptions(const RasterFormat& format, const std::vector<std::string>& options);

}  // namespace orvo::gdal
