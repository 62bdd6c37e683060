// World files: where an image lies, as six numbers beside it.
#pragma once

#include <string>

#include "tiling/output/PlacedTile.h"

namespace orvo::tiling {

/// The world file's name by convention: .pgw for .png, .tfw for .tif; first and last letter and "w"
/// otherwise.
std::string WorldFileName(const std::string& image);

/// Six lines with 17 significant digits; the place is the centre of the upper left pixel.
std::string WorldFileText(const PlacedTile& tile);

/// A side file of the library (".aux.xml") that says where an image lies.
/// @param system the coordinate system as WKT; may be empty
std::string PlaceText(const PlacedTile& tile, const std::string& system);

}  // namespace orvo::tiling
