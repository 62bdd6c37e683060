// Which cells of a raster a tile shows, and reading them.
#pragma once

#include <gdal.h>

#include <array>
#include <span>

#include "platform/Geometry.h"
#include "platform/Utility.h"

class GDALDataset;
class GDALRasterBand;

namespace orvo::gdal {

/// Part of a raster in cells from its top left corner, and the size in pixels that it is shown at.
struct TileWindow {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    int columns = 0;
    int rows = 0;

    /// Whether the window takes whole cells one to one; else it is resampled.
    bool IsExact() const;
};

/// Whole cells, one to one.
TileWindow ExactWindow(int column, int row, int columns, int rows);

/// The part of a raster of `rasterColumns` × `rasterRows` cells inside an envelope. Edges within a millionth
/// of a cell of a cell's edge are moved there; what reaches past the raster is cut off. Fails with a text
/// where the size is not positive or the envelope misses the raster.
TileWindow WindowOf(const std::array<double, 6>& geoTransform, int rasterColumns, int rasterRows,
                    const IEnvelope& envelope, Long columns, Long rows);

/// Where the pixels of a read go, in bytes; 0 bytes for a spacing stand for a tight layout.
struct Layout {
    GDALDataType type = GDT_Byte;
    std::size_t pixel = 0;
    std::size_t line = 0;
    std::size_t band = 0;
};

enum class Resample { Nearest, Bilinear };

/// Reads a window of several bands, or of one band that belongs to no dataset's list (a mask). Fails with
/// number 57 and the library's reason, also where the source ended early.
void ReadWindow(GDALDataset& dataset, std::span<const int> bands, const TileWindow& window, Resample resample,
                void* target, const Layout& layout);
void ReadWindow(GDALRasterBand& band, const TileWindow& window, Resample resample, void* target,
                const Layout& layout);

/// Sets the library's block cache so that it holds the source rows of one row of tiles and little more.
void ReserveBlockCache(GDALDataset& dataset, const TileWindow& window);

}  // namespace orvo::gdal
