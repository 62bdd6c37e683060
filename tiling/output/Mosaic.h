// One virtual raster over all tiles.
#pragma once

#include <string>

#include "tiling/output/PlacedTile.h"

namespace orvo::tiling {

/// The text of a VRT that lies in the tiles' folder and names them relatively. Tiles that are alike keep
/// their bands, types, nodata and palette. Among tiles that are not, palettes are resolved into colours, a
/// grey tile among colours stays grey, and a tile without alpha is opaque.
/// @param system the coordinate system as WKT; may be empty
/// @param cellWidth, cellHeight of the layer in map units
/// Fails with RunError where a tile cannot be read.
std::string MosaicText(const std::string& folder, const TileList& tiles, const std::string& system,
                       double cellWidth, double cellHeight);

}  // namespace orvo::tiling
