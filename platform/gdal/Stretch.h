// How cells that no web format holds become 8 bits. Our own measure since the raster library's statistics let
// one infinite cell blacken all tiles, do not say exactly whether cells lack data, and decode a file of
// interleaved bands once for each.
#pragma once

#include "platform/gdal/BandPlan.h"

class GDALDataset;

namespace orvo::gdal {

struct Range {
    double low = 0;
    double high = 0;
};

/// One linear stretch for a whole layer, so that neighbouring tiles match.
///
/// `low` and `high` are the least and the greatest valid cell of the whole raster, exact over all its cells,
/// in one range over all colour bands, which keeps their balance. A cell v becomes
///     floor((v − low) × 255 / (high − low) + 0.5)
/// and 0 where low equals high. Computed in double precision; of a complex cell the real part counts. Valid
/// is a finite cell that is not its band's nodata and not masked. A cell that is not valid becomes 0.
struct Stretch {
    double low = 0;
    double high = 0;
    bool holes = false;  ///< whether any cell is not valid

    unsigned char operator()(double cell) const;
};

/// Reads the whole raster once, in pieces of at most some megabytes.
Stretch MeasureStretch(GDALDataset& dataset, const BandPlan& plan);

/// Whether a cell of that band type is no data: not finite, or equal to nodata as the type stores it.
bool IsHole(double cell, const std::optional<double>& nodata, GDALDataType type);

}  // namespace orvo::gdal
