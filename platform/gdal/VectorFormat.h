// The vector formats that the library can create.
#pragma once

#include <string>

namespace orvo::gdal {

struct VectorFormat {
    std::string name;         ///< the library's, for example "ESRI Shapefile"
    std::string extension;    ///< without dot
    bool mixesKinds = false;  ///< points, lines and areas may stand in one file
};

/// @param text a name or an extension, whatever the case. Fails with number 440 and names the formats that
/// there are.
VectorFormat FindVectorFormat(const std::string& text);

}  // namespace orvo::gdal
