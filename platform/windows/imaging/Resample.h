// Bringing a part of an image to a size.
#pragma once

#include "platform/windows/imaging/Image.h"

namespace orvo::windows {

/// Part of an image in cells from its top left corner; inside it.
struct CellWindow {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

/// The window at a size: cell by cell where it names as many whole cells, else resampled, by the nearest cell
/// in an image with a palette, bilinear (over all cells that a pixel covers) in any other.
Pixels ReadWindow(ImageSource& source, const CellWindow& window, int columns, int rows);

}  // namespace orvo::windows
