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

/// An <SRS> element as the library's virtual and side files have it, with its line break; empty for no
/// system.
/// @param wkt of the system @param indent blanks before it
std::string SystemElement(const std::string& wkt, int indent);

/// A text inside an element.
std::string Escaped(const std::string& text);

}  // namespace orvo::tiling
