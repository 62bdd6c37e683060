#include "tiling/output/TileIndex.h"

#include <utility>

#include "tiling/output/JsonText.h"

namespace orvo::tiling {
namespace {

Json Ring(const Rectangle& r) {
    return Json::array({Json::array({r.xMin, r.yMin}), Json::array({r.xMax, r.yMin}),
                        Json::array({r.xMax, r.yMax}), Json::array({r.xMin, r.yMax}),
                        Json::array({r.xMin, r.yMin})});
}

Json Feature(const PlacedTile& tile) {
    Json properties{{"location", tile.name}, {"column", tile.column}, {"row", tile.row}};
    if (!tile.id.empty()) properties.update({{"tile", tile.id}, {"x", tile.x}, {"y", tile.y}});
    return {{"type", "Feature"},
            {"properties", std::move(properties)},
            {"geometry", {{"type", "Polygon"}, {"coordinates", Json::array({Ring(tile.envelope)})}}}};
}

}  // namespace

std::string IndexText(const TileList& tiles, const std::string& crs,
                      const std::vector<std::string>& companions) {
    const Json head{{"type", "FeatureCollection"},
                    {"name", "tiles"},
                    {"generator", kGenerator},
                    {"crs", {{"type", "name"}, {"properties", {{"name", crs}}}}},
                    {"companions", companions}};
    std::string text = TextOf(head);
    text.back() = ',';
    text += "\n\"features\":[";
    const char* separator = "\n";
    tiles([&](const PlacedTile& tile) {
        text += separator + TextOf(Feature(tile));
        separator = ",\n";
    });
    return text + "\n]}\n";
}

std::uintmax_t IndexRoom(std::int64_t tiles, const std::string& crs, std::size_t nameBytes) {
    constexpr std::size_t kProducts = 100;  // names of the files beside the tiles
    constexpr std::size_t kTile = 400;      // members, and ten numbers of at most 24 digits
    return IndexText([](const auto&) {}, crs, {}).size() + kProducts +
           static_cast<std::uintmax_t>(tiles) * (kTile + nameBytes);
}

}  // namespace orvo::tiling
