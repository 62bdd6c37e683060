#include "tiling/output/PreviewPage.h"

#include <algorithm>
#include <limits>
#include <set>
#include <string_view>

#include "support/Text.h"
#include "tiling/output/JsonText.h"

namespace orvo::tiling {
namespace {

constexpr std::string_view kTemplate =
#include "preview.html.inc"
    ;
constexpr std::string_view kDataMark = "__DATA__";

bool IsShownByBrowsers(const std::string& name) {
    static const std::set<std::string> kShown{"png", "jpg", "jpeg", "gif", "bmp", "webp", "avif"};
    return kShown.contains(LCase(AfterLast(name, '.')));
}

Json Edges(const Rectangle& r) {
    return Json::array({r.xMin, r.yMin, r.xMax, r.yMax});
}

/// All edges together, and the finest pixel's side in map units.
Json ExtentOfPictures(const TileList& tiles) {
    constexpr double kFar = std::numeric_limits<double>::max();
    Rectangle area{kFar, kFar, -kFar, -kFar};
    double cell = kFar;
    tiles([&](const PlacedTile& tile) {
        const Rectangle& r = tile.placement;
        area = {std::min(area.xMin, r.xMin), std::min(area.yMin, r.yMin), std::max(area.xMax, r.xMax),
                std::max(area.yMax, r.yMax)};
        cell = std::min(cell, (r.xMax - r.xMin) / std::max<Long>(tile.width, 1));
    });
    return {{"area", Edges(area)}, {"cell", cell}};
}

Json TileData(const PlacedTile& tile, bool isPicture) {
    Json data{
        {"name", tile.name}, {"column", tile.column}, {"row", tile.row}, {"envelope", Edges(tile.envelope)}};
    if (isPicture) {
        data.update({{"place", Edges(tile.placement)},
                     {"pixels", {tile.width, tile.height}},
                     {"shown", IsShownByBrowsers(tile.name)}});
    }
    return data;
}

/// Inside a script element only "<" could end the data early.
void AppendData(std::string& page, const std::string& json) {
    for (const char c : json) {
        if (c == '<')
            page += "\\u003c";
        else
            page += c;
    }
}

}  // namespace

std::string PreviewPage(const std::string& title, const TileList& tiles, const std::string& sketch) {
    const std::size_t mark = kTemplate.find(kDataMark);
    std::string page(kTemplate.substr(0, mark));
    AppendData(page, TextOf(title) + "\n" + (sketch.empty() ? TextOf(ExtentOfPictures(tiles)) : sketch));
    tiles([&](const PlacedTile& tile) { AppendData(page, "\n" + TextOf(TileData(tile, sketch.empty()))); });
    return page.append(kTemplate.substr(mark + kDataMark.size()));
}

}  // namespace orvo::tiling
