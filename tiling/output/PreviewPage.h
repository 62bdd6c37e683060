// The page that shows the tiles where they lie.
#pragma once

#include <string>
#include <vector>

#include "tiling/output/PlacedTile.h"

namespace orvo::tiling {

/// A page that needs nothing but itself and the tiles beside it: the tiles as pictures, or a sketch of
/// features under the tiles' outlines.
/// @param title the source's name
/// @param tiles at least one
/// @param sketch as VectorSketch::ToJson() gives it; empty where the tiles are pictures
std::string PreviewPage(const std::string& title, const TileList& tiles, const std::string& sketch = {});

}  // namespace orvo::tiling
