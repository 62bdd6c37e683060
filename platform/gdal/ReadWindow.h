// Reading the cells that a tile shows.
#pragma once

#include <gdal.h>

#include <span>

#include "platform/raster/TileWindow.h"

class GDALDataset;
class GDALRasterBand;

namespace orvo::gdal {

using raster::ExactWindow;
using raster::TileWindow;

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
