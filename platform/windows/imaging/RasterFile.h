// Image files with world files as raster layers.
#pragma once

#include <memory>
#include <string>

#include "platform/Raster.h"

namespace orvo::windows {

/// A layer over an image file that the Windows Imaging Component reads, placed by the world file beside it;
/// one without lies at (0, 0) to (columns, rows) with cells of 1. A rotated or sheared one is refused with
/// number
/// 5. The file is looked at once and not kept open.
std::shared_ptr<IRasterLayer> OpenRasterFile(const std::string& path);

/// The dataset of an image file; fails with number 53 or 57 where it cannot be opened.
std::shared_ptr<IRasterDataset> OpenImageDataset(const std::string& path);

}  // namespace orvo::windows
