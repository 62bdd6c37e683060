// How the index names the layer's coordinate system.
#pragma once

#include <string>

class OGRSpatialReference;

namespace orvo::tiling {

struct ReferenceSystem {
    std::string name;    ///< an EPSG urn, or WKT where there is no code; GDAL and QGIS read both
    std::string notice;  ///< what the user should know; empty for nothing
};

/// @param system the layer's; null where it is not known, and then the name says so: without one, readers
/// would take longitudes and latitudes for granted
ReferenceSystem NameReferenceSystem(const OGRSpatialReference* system);

}  // namespace orvo::tiling
