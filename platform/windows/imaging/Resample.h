// Bringing a part of an image to a size.
#pragma once

#include "platform/raster/TileWindow.h"
#include "platform/windows/imaging/Image.h"

namespace orvo::windows {

/// The window at its size: cell by cell where it names as many whole cells, else resampled, by the nearest
/// cell in an image with a palette, bilinear (over all cells that a pixel covers) in any other.
Pixels ReadWindow(ImageSource& source, const raster::TileWindow& window);

}  // namespace orvo::windows
