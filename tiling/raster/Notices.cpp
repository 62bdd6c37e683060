#include "tiling/raster/Notices.h"

#include <gdal_priv.h>

#include <set>

#include "platform/gdal/BandPlan.h"
#include "support/Text.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"

namespace orvo::tiling {
namespace {

/// The format that the tiles get: some sources keep their own.
std::string TileFormat(const std::string& source, const RasterJob& job) {
    if (source == "jpg") return source;
    const bool kept = !job.converter.empty() && (source == "png" || source == "gif");
    return kept ? source : job.format;
}

std::string BandList(const std::vector<int>& bands) {
    std::string text;
    for (const int band : bands) text += (text.empty() ? "" : ", ") + std::to_string(band);
    return text;
}

}  // namespace

std::string SourceExtension(gdal::RasterLayer& layer, const RasterJob& job) {
    if (layer.IsInGeodatabase()) return "";
    const std::string name = FileNameOf(job.name.empty() ? layer.FilePath() : job.name);
    const auto dot = name.rfind('.');
    return dot == std::string::npos ? "" : LCase(name.substr(dot + 1));
}

void CheckFormat(const std::string& sourceExtension, const RasterJob& job) {
    static const std::set<std::string> kDirect{"png", "jpg", "gif", "bmp"};
    const std::string format = TileFormat(sourceExtension, job);
    if (!job.converter.empty() || kDirect.contains(format)) return;
    throw UsageError("--format " + format +
                     " needs a program that writes it: add --converter, for example --converter "
                     "convert, or choose png, jpg, gif or bmp");
}

std::vector<std::string> FormatNotices(gdal::RasterLayer& layer, const RasterJob& job) {
    std::vector<std::string> notices;
    const std::string source = SourceExtension(layer, job);
    const std::string format = TileFormat(source, job);
    if (format != job.format) {
        notices.push_back("the tiles of a " + source + " source stay " + format +
                          (job.converter.empty() ? "" : " with a converter") + ", although --format says " +
                          job.format);
    }
    const gdal::BandPlan plan = gdal::PlanBands(layer.Dataset());
    const bool transparent = plan.alpha != 0 || plan.mask || plan.HasNodata();
    if (transparent && (format == "jpg" || format == "bmp")) {
        notices.push_back(format +
                          " holds no transparency: what is transparent or without data in the source is not "
                          "in the tiles");
    }
    if (!job.converter.empty()) return notices;  // the program sees all bands and decides
    const int shown = static_cast<int>(plan.colours.size()) + (plan.alpha != 0 ? 1 : 0);
    if (layer.BandCount() > shown) {
        notices.push_back("the source has " + std::to_string(layer.BandCount()) + " bands; the tiles show " +
                          (plan.colours.size() == 1 ? "band " : "bands ") + BandList(plan.colours));
    }
    if (plan.type != GDT_Byte && plan.palette.empty() && !(plan.type == GDT_UInt16 && format == "png")) {
        notices.push_back(std::string("cells of type ") + GDALGetDataTypeName(plan.type) +
                          " are brought to 8 bits, by one stretch for the whole layer");
    }
    return notices;
}

}  // namespace orvo::tiling
