#include "host/TileIndex.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>

#include "host/Errors.h"

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace orvo::host {
namespace {

constexpr const char* kGenerator = "orvo-tile";
const std::regex kIndexName("tiles(_[0-9]+)?\\.geojson");
/// Tiles, their world files and exported TIFFs; the mosaic and the page.
const std::regex kOurName(
    "i[0-9]{6}[A-Za-z0-9_-]*\\.[A-Za-z0-9]+|mosaic(_[0-9]+)?\\.vrt|index(_[0-9]+)?\\.html");

Json Ring(const Rectangle& r) {
    return Json::array({Json::array({r.xMin, r.yMin}), Json::array({r.xMax, r.yMin}),
                        Json::array({r.xMax, r.yMax}), Json::array({r.xMin, r.yMax}),
                        Json::array({r.xMin, r.yMin})});
}

Json Feature(const PlacedTile& tile) {
    return {{"type", "Feature"},
            {"properties", {{"location", tile.name}, {"column", tile.column}, {"row", tile.row}}},
            {"geometry", {{"type", "Polygon"}, {"coordinates", Json::array({Ring(tile.envelope)})}}}};
}

std::vector<std::string> NamesIn(const Json& index) {
    if (index.at("generator") != kGenerator) throw std::runtime_error("another program wrote it");
    auto names = index.at("companions").get<std::vector<std::string>>();
    for (const Json& feature : index.at("features")) {
        names.push_back(feature.at("properties").at("location").get<std::string>());
    }
    for (const std::string& name : names) {
        if (!std::regex_match(name, kOurName)) throw std::runtime_error("it names \"" + name + "\"");
    }
    return names;
}

}  // namespace

std::string IndexText(const std::vector<PlacedTile>& tiles, const std::string& crs,
                      const std::vector<std::string>& companions) {
    Json head{{"type", "FeatureCollection"},
              {"name", "tiles"},
              {"generator", kGenerator},
              {"crs", {{"type", "name"}, {"properties", {{"name", crs}}}}},
              {"companions", companions}};
    std::string text = head.dump();
    text.back() = ',';
    text += "\n\"features\":[";
    const char* separator = "\n";
    for (const PlacedTile& tile : tiles) {
        text += separator + Feature(tile).dump();
        separator = ",\n";
    }
    return text + "\n]}\n";
}

std::vector<std::string> FindIndexes(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing)) {
        std::string name = entry.path().filename().string();
        if (std::regex_match(name, kIndexName)) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> FilesOfIndex(const std::string& folder, const std::string& index) {
    const fs::path path = fs::path(folder) / index;
    try {
        if (!fs::is_regular_file(fs::symlink_status(path)))
            throw std::runtime_error("it is not a regular file");
        std::ifstream file(path, std::ios::binary);
        return NamesIn(Json::parse(file));
    } catch (const std::exception& error) {
        throw UsageError("\"" + path.string() + "\" is no index that --overwrite may clear away (" +
                         error.what() + "); move it away, or name another OUTDIR");
    }
}

}  // namespace orvo::host
