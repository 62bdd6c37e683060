#include "platform/gdal/ReadWindow.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>

#include "platform/RuntimeError.h"
#include "platform/gdal/ErrorCapture.h"

namespace orvo::gdal {
namespace {

constexpr double kSmallestCache = 16.0 * 1024 * 1024;
constexpr double kSpareRows = 1.3;

/// The whole cells that a range touches.
struct Cells {
    int first;
    int count;
};

Cells Touched(double from, double to, int size) {
    const int first = std::clamp(static_cast<int>(std::floor(from)), 0, size - 1);
    const int last = std::clamp(static_cast<int>(std::ceil(to)), first + 1, size);
    return {first, last - first};
}

GDALRasterIOExtraArg Arguments(const TileWindow& window, Resample resample) {
    GDALRasterIOExtraArg arguments;
    INIT_RASTERIO_EXTRA_ARG(arguments);
    if (window.IsExact()) return arguments;
    arguments.eResampleAlg = resample == Resample::Nearest ? GRIORA_NearestNeighbour : GRIORA_Bilinear;
    arguments.bFloatingPointWindowValidity = TRUE;
    arguments.dfXOff = window.left;
    arguments.dfYOff = window.top;
    arguments.dfXSize = window.right - window.left;
    arguments.dfYSize = window.bottom - window.top;
    return arguments;
}

void Require(CPLErr result, const ErrorCapture& errors) {
    if (result == CE_None && !errors.Failed()) return;
    throw RuntimeError(Fault::DeviceIOError, errors.Reason("the source cannot be read"));
}

}  // namespace

void ReadWindow(GDALDataset& dataset, std::span<const int> bands, const TileWindow& window, Resample resample,
                void* target, const Layout& layout) {
    const Cells x = Touched(window.left, window.right, dataset.GetRasterXSize());
    const Cells y = Touched(window.top, window.bottom, dataset.GetRasterYSize());
    GDALRasterIOExtraArg arguments = Arguments(window, resample);
    std::vector<int> list(bands.begin(), bands.end());
    const ErrorCapture errors;
    const CPLErr result = dataset.RasterIO(
        GF_Read, x.first, y.first, x.count, y.count, target, window.columns, window.rows, layout.type,
        static_cast<int>(list.size()), list.data(), static_cast<GSpacing>(layout.pixel),
        static_cast<GSpacing>(layout.line), static_cast<GSpacing>(layout.band), &arguments);
    Require(result, errors);
}

void ReadWindow(GDALRasterBand& band, const TileWindow& window, Resample resample, void* target,
                const Layout& layout) {
    const Cells x = Touched(window.left, window.right, band.GetXSize());
    const Cells y = Touched(window.top, window.bottom, band.GetYSize());
    GDALRasterIOExtraArg arguments = Arguments(window, resample);
    const ErrorCapture errors;
    const CPLErr result = band.RasterIO(GF_Read, x.first, y.first, x.count, y.count, target, window.columns,
                                        window.rows, layout.type, static_cast<GSpacing>(layout.pixel),
                                        static_cast<GSpacing>(layout.line), &arguments);
    Require(result, errors);
}

void ReserveBlockCache(GDALDataset& dataset, const TileWindow& window) {
    double cellBytes = 0;
    for (int band = 1; band <= dataset.GetRasterCount(); ++band) {
        cellBytes += GDALGetDataTypeSizeBytes(dataset.GetRasterBand(band)->GetRasterDataType());
    }
    const bool wholeRows = window.right - window.left >= dataset.GetRasterXSize();
    const double rows = wholeRows ? 0 : kSpareRows * (window.bottom - window.top);
    const double bytes = std::max(kSmallestCache, rows * dataset.GetRasterXSize() * cellBytes);
    GDALSetCacheMax64(static_cast<GIntBig>(bytes));
}

}  // namespace orvo::gdal
