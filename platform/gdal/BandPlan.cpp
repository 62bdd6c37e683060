#include "platform/gdal/BandPlan.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>

namespace orvo::gdal {
namespace {

int FindBand(GDALDataset& dataset, GDALColorInterp interpretation) {
    for (int band = 1; band <= dataset.GetRasterCount(); ++band) {
        if (dataset.GetRasterBand(band)->GetColorInterpretation() == interpretation) return band;
    }
    return 0;
}

std::vector<int> ColourBands(GDALDataset& dataset) {
    const std::array<int, 3> named = {FindBand(dataset, GCI_RedBand), FindBand(dataset, GCI_GreenBand),
                                      FindBand(dataset, GCI_BlueBand)};
    if (std::find(named.begin(), named.end(), 0) == named.end()) return {named.begin(), named.end()};
    std::vector<int> bands;
    for (int band = 1; band <= dataset.GetRasterCount(); ++band) {
        if (dataset.GetRasterBand(band)->GetColorInterpretation() != GCI_AlphaBand) bands.push_back(band);
    }
    if (bands.empty()) bands = {1};
    bands.resize(bands.size() >= 3 ? 3 : 1);
    return bands;
}

Palette PaletteOf(GDALRasterBand& band) {
    const GDALColorTable* const table = band.GetColorTable();
    Palette palette;
    if (table == nullptr) return palette;
    for (int i = 0; i < table->GetColorEntryCount(); ++i) {
        GDALColorEntry entry{};
        table->GetColorEntryAsRGB(i, &entry);
        const auto part = [](short value) {
            return static_cast<unsigned char>(std::clamp<short>(value, 0, 255));
        };
        palette.push_back({part(entry.c1), part(entry.c2), part(entry.c3), part(entry.c4)});
    }
    return palette;
}

}  // namespace

bool BandPlan::HasNodata() const {
    return std::all_of(nodata.begin(), nodata.end(), [](const auto& value) { return value.has_value(); });
}

BandPlan PlanBands(GDALDataset& dataset) {
    BandPlan plan;
    plan.colours = ColourBands(dataset);
    plan.alpha = FindBand(dataset, GCI_AlphaBand);
    GDALRasterBand& first = *dataset.GetRasterBand(plan.colours[0]);
    if (plan.alpha == plan.colours[0]) plan.alpha = 0;
    const int flags = first.GetMaskFlags();
    plan.mask =
        plan.alpha == 0 && (flags == 0 || ((flags & GMF_PER_DATASET) != 0 && (flags & GMF_ALPHA) == 0));
    plan.type = first.GetRasterDataType();
    for (const int number : plan.colours) {
        GDALRasterBand& band = *dataset.GetRasterBand(number);
        int has = FALSE;
        const double value = band.GetNoDataValue(&has);
        plan.nodata.push_back(has != FALSE ? std::optional(value) : std::nullopt);
        plan.type = GDALDataTypeUnion(plan.type, band.GetRasterDataType());
    }
    if (plan.colours.size() == 1) plan.palette = PaletteOf(first);
    return plan;
}

}  // namespace orvo::gdal
