// The geometry of a feature as parts of the plain kinds.
#pragma once

#include <string>
#include <vector>

class OGRGeometry;

namespace orvo::gdal {

struct FeatureParts {
    /// ISO WKB of points, multipoints, lines and areas; one, or one for each member of a collection.
    std::vector<std::vector<unsigned char>> wkb;
    std::string reason;         ///< why there are none, or not all; empty where there are
    bool holdsNothing = false;  ///< no geometry, or an empty one
    bool linearised = false;    ///< curves became lines of short segments
    bool surfaces = false;      ///< triangles and faces became areas
    bool measures = false;      ///< measures were left out
};

/// Curves are drawn as lines with a vertex at least every 4 degrees; collections are taken apart, also nested
/// ones; triangles, networks of triangles and polyhedral surfaces become areas; rings are closed. Heights
/// stay.
/// @param geometry null for a feature without one
FeatureParts PartsOf(const OGRGeometry* geometry);

}  // namespace orvo::gdal
