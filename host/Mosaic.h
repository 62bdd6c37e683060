// One virtual raster over all tiles.
#pragma once

#include <string>
#include <vector>

#include "host/PlacedTile.h"

namespace orvo::host {

/// Writes a VRT over the tiles, with names relative to its own folder. Needs the tiles' world files.
/// @param folder that holds the tiles and gets the VRT
/// @param system the coordinate system as WKT; may be empty
/// @param cell the layer's cell size in map units
/// @return the number of tiles that the VRT shows; fails with RunError
std::size_t WriteMosaic(const std::string& folder, const std::string& name,
                        const std::vector<PlacedTile>& tiles, const std::string& system, double cellWidth,
                        double cellHeight);

}  // namespace orvo::host
