#include "platform/gdal/NativeTiff.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <numeric>

#include "platform/RuntimeError.h"
#include "platform/gdal/BandFacts.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/ScopedOption.h"

namespace orvo::gdal {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{8} << 20;

void Require(bool done, const ErrorCapture& errors) {
    if (done) return;
    throw RuntimeError(static_cast<Long>(Fault::AutomationError),
                       errors.Reason("the TIFF cannot be written"));
}

GDALDataType CommonType(GDALDataset& source) {
    GDALDataType type = source.GetRasterBand(1)->GetRasterDataType();
    for (int band = 2; band <= source.GetRasterCount(); ++band) {
        type = GDALDataTypeUnion(type, source.GetRasterBand(band)->GetRasterDataType());
    }
    return type;
}

/// Three bands or more are colours, as in a tile, also where the source does not say so: most programs would
/// take an unmarked second band for transparency.
bool IsRgb(GDALDataset& source) {
    constexpr std::array kColours = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand};
    if (source.GetRasterCount() < 3) return false;
    for (int i = 0; i < 3; ++i) {
        const GDALColorInterp said = source.GetRasterBand(i + 1)->GetColorInterpretation();
        const bool unmarked = said == GCI_Undefined || said == GCI_GrayIndex;
        if (!unmarked && said != kColours[static_cast<std::size_t>(i)]) return false;
    }
    return true;
}

CPLStringList Options(GDALDataset& source) {
    GDALRasterBand& first = *source.GetRasterBand(1);
    CPLStringList options;
    const bool palette = source.GetRasterCount() == 1 && first.GetColorTable() != nullptr &&
                         (first.GetRasterDataType() == GDT_Byte || first.GetRasterDataType() == GDT_UInt16);
    options.SetNameValue("PHOTOMETRIC", palette ? "PALETTE" : IsRgb(source) ? "RGB" : "MINISBLACK");
    options.SetNameValue("BIGTIFF", "IF_SAFER");
    const char* const signedness = first.GetMetadataItem("PIXELTYPE", "IMAGE_STRUCTURE");
    if (signedness != nullptr) options.SetNameValue("PIXELTYPE", signedness);
    return options;
}

void CopyBandProperties(GDALDataset& source, GDALDataset& target) {
    for (int number = 1; number <= source.GetRasterCount(); ++number) {
        GDALRasterBand& from = *source.GetRasterBand(number);
        GDALRasterBand& to = *target.GetRasterBand(number);
        if (from.GetColorInterpretation() == GCI_AlphaBand) to.SetColorInterpretation(GCI_AlphaBand);
        if (number == 1 && source.GetRasterCount() == 1 && from.GetColorTable() != nullptr) {
            to.SetColorTable(from.GetColorTable());
        }
        int has = FALSE;
        const double nodata = from.GetNoDataValue(&has);
        if (has != FALSE) to.SetNoDataValue(nodata);
    }
}

void CopyPlace(GDALDataset& source, const TileWindow& window, GDALDataset& target) {
    std::array<double, 6> t{};
    if (source.GetGeoTransform(t.data()) != CE_None) return;
    t[0] += window.left * t[1] + window.top * t[2];
    t[3] += window.left * t[4] + window.top * t[5];
    const double across = (window.right - window.left) / window.columns;
    const double down = (window.bottom - window.top) / window.rows;
    t[1] *= across;
    t[4] *= across;
    t[2] *= down;
    t[5] *= down;
    target.SetGeoTransform(t.data());
    target.SetSpatialRef(source.GetSpatialRef());
}

bool HasOwnMask(GDALDataset& source) {
    const int flags = source.GetRasterBand(1)->GetMaskFlags();
    return (flags & GMF_PER_DATASET) != 0 && (flags & (GMF_ALPHA | GMF_NODATA)) == 0;
}

/// The part of an exact window from pixel row `from` on.
TileWindow RowsOf(const TileWindow& window, int from, int rows) {
    return ExactWindow(static_cast<int>(window.left), static_cast<int>(window.top) + from, window.columns,
                       rows);
}

/// Copies all bands, in pieces of some megabytes where the window is exact.
void CopyCells(GDALDataset& source, const TileWindow& window, GDALDataset& target) {
    const GDALDataType type = CommonType(source);
    const auto bandBytes = static_cast<std::size_t>(GDALGetDataTypeSizeBytes(type));
    std::vector<int> bands(static_cast<std::size_t>(source.GetRasterCount()));
    std::iota(bands.begin(), bands.end(), 1);
    const std::size_t pixel = bandBytes * bands.size();
    const std::size_t line = pixel * static_cast<std::size_t>(window.columns);
    const int most =
        window.IsExact() ? static_cast<int>(std::max<std::size_t>(1, kPieceBytes / line)) : window.rows;
    const Resample resample =
        source.GetRasterBand(1)->GetColorTable() != nullptr ? Resample::Nearest : Resample::Bilinear;
    std::vector<unsigned char> cells;
    for (int row = 0; row < window.rows; row += most) {
        const int rows = std::min(most, window.rows - row);
        cells.resize(line * static_cast<std::size_t>(rows));
        ReadWindow(source, bands, window.IsExact() ? RowsOf(window, row, rows) : window, resample,
                   cells.data(), {.type = type, .pixel = pixel, .line = line, .band = bandBytes});
        const ErrorCapture errors;
        Require(target.RasterIO(GF_Write, 0, row, window.columns, rows, cells.data(), window.columns, rows,
                                type, static_cast<int>(bands.size()), bands.data(),
                                static_cast<GSpacing>(pixel), static_cast<GSpacing>(line),
                                static_cast<GSpacing>(bandBytes), nullptr) == CE_None,
                errors);
    }
}

void CopyMask(GDALDataset& source, const TileWindow& window, GDALDataset& target) {
    std::vector<unsigned char> mask(static_cast<std::size_t>(window.columns) *
                                    static_cast<std::size_t>(window.rows));
    ReadWindow(*source.GetRasterBand(1)->GetMaskBand(), window, Resample::Nearest, mask.data(),
               {.type = GDT_Byte});
    const ErrorCapture errors;
    const ScopedOption inside("GDAL_TIFF_INTERNAL_MASK", "YES");
    Require(target.CreateMaskBand(GMF_PER_DATASET) == CE_None, errors);
    Require(target.GetRasterBand(1)->GetMaskBand()->RasterIO(GF_Write, 0, 0, window.columns, window.rows,
                                                             mask.data(), window.columns, window.rows,
                                                             GDT_Byte, 0, 0, nullptr) == CE_None,
            errors);
}

}  // namespace

void CopyAsTiff(GDALDataset& source, const TileWindow& window, Place place, const FileInMemory& file) {
    const NoSideFiles noSideFiles;
    const ErrorCapture errors;
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    Require(driver != nullptr, errors);
    GDALDatasetUniquePtr target(driver->Create(file.Name().c_str(), window.columns, window.rows,
                                               source.GetRasterCount(), CommonType(source),
                                               Options(source).List()));
    Require(target != nullptr, errors);
    CopyBandProperties(source, *target);
    if (place == Place::Keep) {
        CopyPlace(source, window, *target);
        for (int band = 1; band <= source.GetRasterCount(); ++band)
            CopyFacts(*source.GetRasterBand(band), *target->GetRasterBand(band));
    }
    CopyCells(source, window, *target);
    if (HasOwnMask(source)) CopyMask(source, window, *target);
    target->FlushCache(true);
    target.reset();
    Require(!errors.Failed(), errors);
}

}  // namespace orvo::gdal
