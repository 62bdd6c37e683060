#include "tiling/output/PreviewPage.h"

#include <nlohmann/json.hpp>
#include <set>

#include "support/Text.h"
#include "tiling/output/PreviewTemplate.h"

using Json = nlohmann::ordered_json;

namespace orvo::tiling {
namespace {

constexpr const char* kDataMark = "__TILES__";

bool IsShownByBrowsers(const std::string& name) {
    static const std::set<std::string> kShown{"png", "jpg", "jpeg", "gif", "bmp", "webp", "avif"};
    return kShown.contains(LCase(AfterLast(name, '.')));
}

Json Edges(const Rectangle& r) {
    return Json::array({r.xMin, r.yMin, r.xMax, r.yMax});
}

Json TileData(const PlacedTile& tile) {
    return {{"name", tile.name},
            {"column", tile.column},
            {"row", tile.row},
            {"shown", IsShownByBrowsers(tile.name)},
            {"width", tile.width},
            {"height", tile.height},
            {"place", Edges(tile.placement)},
            {"envelope", Edges(tile.envelope)}};
}

}  // namespace

std::string PreviewPage(const std::string& title, const std::vector<PlacedTile>& tiles) {
    Json data{{"title", title}, {"tiles", Json::array()}};
    for (const PlacedTile& tile : tiles) data["tiles"].push_back(TileData(tile));
    return FilledPage(kPreviewTemplate, data.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string FilledPage(const char* page, const std::string& json) {
    // Inside a script element only "<" could end the data early.
    std::string text;
    for (const char c : json) text += c == '<' ? std::string("\\u003c") : std::string(1, c);
    std::string filled = page;
    return filled.replace(filled.find(kDataMark), std::string(kDataMark).size(), text);
}

}  // namespace orvo::tiling
