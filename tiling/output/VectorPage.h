// The page that shows the features and the tiles over them.
#pragma once

#include <string>
#include <vector>

#include "tiling/output/PlacedTile.h"
#include "tiling/vector/VectorSketch.h"

namespace orvo::tiling {

/// A page that needs nothing but itself and the tiles beside it. @param title the layer's name
std::string VectorPage(const std::string& title, const std::vector<PlacedTile>& tiles,
                       const VectorSketch& sketch);

}  // namespace orvo::tiling
