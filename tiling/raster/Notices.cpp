#include "tiling/raster/Notices.h"

#include <gdal_priv.h>

#include <algorithm>

#include "platform/RuntimeError.h"
#include "support/Text.h"
#include "tiling/Errors.h"
#include "tiling/output/Numbers.h"

namespace orvo::tiling {
namespace {

std::string BandList(const std::vector<int>& bands) {
    std::string text;
    for (const int band : bands) text += (text.empty() ? "" : ", ") + std::to_string(band);
    return text;
}

bool IsExtension(const std::string& text) {
    return !text.empty() && text.size() <= 10 &&
           std::ranges::all_of(text, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z'); });
}

}  // namespace

gdal::RasterFormat FormatOf(const RasterJob& job) {
    try {
        return gdal::FindRasterFormat(job.format);
    } catch (const RuntimeError& failure) {
        const std::string plain = LCase(job.format.starts_with('.') ? job.format.substr(1) : job.format);
        if (!job.converter.empty() && IsExtension(plain)) return {"", plain};
        throw UsageError("--format: " + failure.Description());
    }
}

std::vector<std::string> FormatNotices(gdal::RasterLayer& layer, const RasterJob& job,
                                       const gdal::TileWriter& writer, const std::string& extension) {
    std::vector<std::string> notices;
    const gdal::Treatment& treats = writer.Treats();
    const std::string format = writer.Format().driver == "GTiff" ? extension : writer.Format().driver;
    const gdal::BandPlan plan = gdal::PlanBands(layer.Dataset());
    const bool transparent = plan.alpha != 0 || plan.mask || plan.HasNodata();
    if (transparent && (extension == "jpg" || extension == "bmp")) {
        notices.push_back(extension +
                          " holds no transparency: what is transparent or without data in the source is not "
                          "in the tiles");
    }
    const int shown = static_cast<int>(plan.colours.size()) + (plan.alpha != 0 ? 1 : 0);
    if (treats.picture && layer.BandCount() > shown) {
        notices.push_back("the source has " + std::to_string(layer.BandCount()) + " bands; the tiles show " +
                          (plan.colours.size() == 1 ? "band " : "bands ") + BandList(plan.colours));
    }
    if (!job.converter.empty()) return notices;
    if (treats.losses)
        notices.push_back(format + " changes values where it compresses; --co options may tell it not to");
    if (!treats.lost.empty()) notices.push_back(format + " does not keep: " + treats.lost);
    return notices;
}

std::string StretchNotice(gdal::TileWriter& writer) {
    if (!writer.Treats().stretched) return "";
    try {
        const gdal::Stretch stretch = writer.LayerStretch();
        const std::string cells = std::string("cells of type ") + GDALGetDataTypeName(writer.PictureType()) +
                                  " are brought to 8 bits, by one stretch for the whole layer: ";
        if (!(stretch.low <= stretch.high)) return cells + "it holds no data";
        return cells + Digits(stretch.low) + " becomes 0 and " + Digits(stretch.high) +
               " 255; --format tif keeps them";
    } catch (const RuntimeError&) {
        return "";
    }
}

}  // namespace orvo::tiling
