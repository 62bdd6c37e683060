#include "tiling/output/TileIndex.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "tiling/Errors.h"
#include "tiling/output/JsonText.h"

namespace fs = std::filesystem;

namespace orvo::tiling {
namespace {

constexpr const char* kGenerator = "orvo-tile";
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsPlain(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

template <class Test>
bool AllOf(std::string_view text, Test&& test) {
    return !text.empty() && std::all_of(text.begin(), text.end(), test);
}

/// stem.ext or stem_7.ext
bool IsNumbered(std::string_view name, std::string_view stem, std::string_view extension) {
    if (!name.starts_with(stem) || !name.ends_with(extension) ||
        name.size() < stem.size() + extension.size()) {
        return false;
    }
    const std::string_view number = name.substr(stem.size(), name.size() - stem.size() - extension.size());
    return number.empty() || (number.front() == '_' && AllOf(number.substr(1), IsDigit));
}

/// A tile, its world file or an exported TIFF: "i", the time of day, whatever makes the name free, an
/// extension.
bool IsTileName(std::string_view name) {
    const auto dot = name.find('.');
    if (dot == std::string_view::npos || dot < 7 || name.front() != 'i') return false;
    const auto isFreePart = [](char c) { return IsPlain(c) || c == '_' || c == '-'; };
    return AllOf(name.substr(1, 6), IsDigit) && AllOf(name.substr(0, dot), isFreePart) &&
           AllOf(name.substr(dot + 1), IsPlain);
}

/// A vector tile or a file that goes with it: any beginning, "grp", a number, an extension.
bool IsVectorTileName(std::string_view name) {
    const auto dot = name.rfind('.');
    const auto mark = name.rfind("grp", dot);
    if (dot == std::string_view::npos || mark == std::string_view::npos || name.front() == '.') return false;
    return name.find_first_of("/\\") == std::string_view::npos &&
           AllOf(name.substr(mark + 3, dot - mark - 3), IsDigit) && AllOf(name.substr(dot + 1), IsPlain);
}

bool IsIndexName(std::string_view name) {
    return IsNumbered(name, "tiles", ".geojson");
}

bool IsOurName(std::string_view name) {
    return IsTileName(name) || IsVectorTileName(name) || IsNumbered(name, "skipped", ".geojson") ||
           IsNumbered(name, "mosaic", ".vrt") || IsNumbered(name, "index", ".html");
}

Json Ring(const Rectangle& r) {
    return Json::array({Json::array({r.xMin, r.yMin}), Json::array({r.xMax, r.yMin}),
                        Json::array({r.xMax, r.yMax}), Json::array({r.xMin, r.yMax}),
                        Json::array({r.xMin, r.yMin})});
}

Json Feature(const PlacedTile& tile) {
    Json properties{{"location", tile.name}, {"column", tile.column}, {"row", tile.row}};
    if (!tile.id.empty()) properties["tile"] = tile.id;
    return {{"type", "Feature"},
            {"properties", std::move(properties)},
            {"geometry", {{"type", "Polygon"}, {"coordinates", Json::array({Ring(tile.envelope)})}}}};
}

std::vector<std::string> NamesIn(const Json& index) {
    if (index.at("generator") != kGenerator) throw std::runtime_error("another program wrote it");
    auto names = index.at("companions").get<std::vector<std::string>>();
    for (const Json& feature : index.at("features")) {
        names.push_back(feature.at("properties").at("location").get<std::string>());
    }
    for (const std::string& name : names) {
        if (!IsOurName(name)) throw std::runtime_error("it names \"" + name + "\"");
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

std::uintmax_t IndexRoom(std::int64_t tiles, const std::string& crs, std::size_t nameBytes) {
    constexpr std::size_t kProducts = 100;  // names of the files beside the tiles
    constexpr std::size_t kTile = 400;      // members, and ten numbers of at most 24 digits
    return IndexText({}, crs, {}).size() + kProducts +
           static_cast<std::uintmax_t>(tiles) * (kTile + nameBytes);
}

std::vector<std::string> FindIndexes(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing)) {
        std::string name = entry.path().filename().string();
        if (IsIndexName(name)) names.push_back(std::move(name));
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

}  // namespace orvo::tiling
