// Folders of raster files as workspaces.
#pragma once

#include <memory>

#include "platform/Raster.h"

namespace orvo::gdal {

/// A factory whose workspaces are folders. A missing folder fails with number 76.
std::shared_ptr<IRasterWorkspaceFactory> NewRasterWorkspaceFactory();

}  // namespace orvo::gdal
