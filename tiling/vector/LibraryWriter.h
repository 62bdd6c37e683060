// Tile files in any format that the vector library creates.
#pragma once

#include <memory>

#include "platform/gdal/VectorFormat.h"
#include "tiling/vector/PieceWriter.h"

namespace orvo::tiling {

/// What the format cannot hold is kept as text, or told among the notices. The layer must outlive the writer.
std::unique_ptr<PieceWriter> MakeLibraryWriter(gdal::VectorFormat format, const gdal::VectorLayer& layer,
                                               const AddedFields& added);

}  // namespace orvo::tiling
