#include "platform/gdal/Stretch.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/gdal/Pieces.h"

namespace orvo::gdal {
namespace {

/// Widens the range by one band's part of a window.
void Measure(GDALRasterBand& band, const TileWindow& window, std::vector<double>& cells,
             std::vector<unsigned char>& mask, Stretch& stretch) {
    const auto count = static_cast<std::size_t>(window.columns) * static_cast<std::size_t>(window.rows);
    cells.resize(count);
    ReadWindow(band, window, Resample::Nearest, cells.data(), {.type = GDT_Float64});
    const bool masked = (band.GetMaskFlags() & GMF_ALL_VALID) == 0;
    mask.assign(masked ? 0 : count, 255);
    if (masked) {
        mask.resize(count);
        ReadWindow(*band.GetMaskBand(), window, Resample::Nearest, mask.data(), {.type = GDT_Byte});
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (mask[i] == 0 || !std::isfinite(cells[i])) {
            stretch.holes = true;
        } else {
            stretch.low = std::min(stretch.low, cells[i]);
            stretch.high = std::max(stretch.high, cells[i]);
        }
    }
}

}  // namespace

unsigned char Stretch::operator()(double cell) const {
    if (!(high > low)) return 0;
    const double level = std::floor((cell - low) * 255 / (high - low) + 0.5);
    return static_cast<unsigned char>(std::clamp(level, 0.0, 255.0));
}

Stretch MeasureStretch(GDALDataset& dataset, const BandPlan& plan) {
    Stretch stretch{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    std::vector<double> cells;
    std::vector<unsigned char> mask;
    ForEachPiece(dataset, [&](const TileWindow& piece) {
        for (const int band : plan.colours) {
            Measure(*dataset.GetRasterBand(band), piece, cells, mask, stretch);
        }
    });
    return stretch;
}

bool IsHole(double cell, const std::optional<double>& nodata, GDALDataType type) {
    if (!std::isfinite(cell)) return true;
    if (!nodata) return false;
    return cell == (type == GDT_Float32 ? static_cast<double>(static_cast<float>(*nodata)) : *nodata);
}

}  // namespace orvo::gdal
