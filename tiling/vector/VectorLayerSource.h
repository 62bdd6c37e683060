// The layer that a vector command works on.
#pragma once

#include <memory>

#include "platform/gdal/VectorLayer.h"
#include "tiling/vector/VectorJob.h"

namespace orvo::tiling {

/// Fails with UsageError where the source holds several layers and the right one is not named; else with the
/// layer's own error. Needs the platform.
std::shared_ptr<gdal::VectorLayer> OpenLayer(const VectorGridJob& job);

}  // namespace orvo::tiling
