// The page that shows the tiles where they lie.
#pragma once

#include <string>
#include <vector>

#include "tiling/output/PlacedTile.h"

namespace orvo::tiling {

/// A page that needs nothing but itself and the tiles beside it. @param title the source's name
std::string PreviewPage(const std::string& title, const std::vector<PlacedTile>& tiles);

/// A page with its data put in. @param json without characters that are no UTF-8
std::string FilledPage(const char* page, const std::string& json);

}  // namespace orvo::tiling
