// Reading and writing pixels through the Windows Imaging Component.
#pragma once

#include <memory>

#include "platform/RasterIO.h"

namespace orvo::windows {

/// An object that keeps the source of its last call open. It serves every layer whose FilePath is an image
/// file that the system reads, and whose extent holds that image.
std::shared_ptr<IRasterIO> NewRasterIO();

}  // namespace orvo::windows
