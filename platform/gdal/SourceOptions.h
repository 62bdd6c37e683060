// How sources are opened.
#pragma once

namespace orvo::gdal {

/// Open options of rasters that are read piece by piece. A TIFF would else follow GDAL_NUM_THREADS: it
/// decodes on several threads past the block cache, and a block that stands in many pieces once for each of
/// them. The @ keeps formats without such an option from warning of it.
inline constexpr const char* kSourceOptions[] = {"@NUM_THREADS=1", nullptr};

}  // namespace orvo::gdal
