#include "tiling/output/VectorPage.h"

#include "platform/gdal/Attributes.h"
#include "tiling/output/PreviewPage.h"
#include "tiling/output/PreviewTemplate.h"

namespace orvo::tiling {
namespace {

void AppendNumbers(std::string& text, std::initializer_list<double> numbers) {
    for (const double number : numbers) {
        if (!text.ends_with('[')) text += ',';
        gdal::AppendJson(text, number);
    }
}

}  // namespace

std::string VectorPage(const std::string& title, const std::vector<PlacedTile>& tiles,
                       const VectorSketch& sketch) {
    const geos::Bounds& area = sketch.Area();
    std::string data = "{\"title\":" + gdal::JsonText(title) + ",\"area\":[";
    AppendNumbers(data, {area.xMin, area.yMin, area.xMax, area.yMax});
    data += "],\"cell\":";
    gdal::AppendJson(data, sketch.CellSize());
    data += ",\"leftOut\":" + std::to_string(sketch.LeftOut()) + ",\"shapes\":" + sketch.Json() +
            ",\n\"tiles\":[";
    const char* separator = "\n[";
    for (const PlacedTile& tile : tiles) {
        data += separator + gdal::JsonText(tile.name);
        const Rectangle& r = tile.envelope;
        AppendNumbers(data, {static_cast<double>(tile.column), static_cast<double>(tile.row), r.xMin, r.yMin,
                             r.xMax, r.yMax});
        data += ']';
        separator = ",\n[";
    }
    return FilledPage(kVectorPreviewTemplate, data + "]}");
}

}  // namespace orvo::tiling
