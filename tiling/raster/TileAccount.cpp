#include "tiling/raster/TileAccount.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <unordered_set>
#include <utility>

#include "platform/files/PartFile.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"

namespace orvo::tiling {
namespace {

constexpr std::int64_t kMostTilesOfARun = 100'000'000;

/// Of the first source; its file name's part before the extension.
std::string SourceName(const RasterJob& job) {
    std::string name = FileNameOf(job.inputs.front());
    if (const auto dot = name.rfind('.'); dot != std::string::npos && dot > 0) name.resize(dot);
    return name.substr(std::min(name.find_first_not_of('.'), name.size()));
}

std::string WithoutExtension(std::string pattern, const std::string& extension) {
    if (pattern.ends_with("." + extension)) pattern.resize(pattern.size() - extension.size() - 1);
    return pattern;
}

}  // namespace

TileAccount::TileAccount(const RasterJob& job, const RasterGrid& grid, std::string extension)
    : job_(job),
      grid_(grid),
      extension_(std::move(extension)),
      pattern_(WithoutExtension(job.tileNames, extension_)),
      source_(SourceName(job)),
      names_(pattern_, source_, grid.Rows(), grid.Columns()) {
    if (Count() > kMostTilesOfARun)
        throw UsageError("this grid has " + std::to_string(grid.Visited().columns) + " x " +
                         std::to_string(grid.Visited().rows) + " tiles, and at most " +
                         std::to_string(kMostTilesOfARun) + " are cut; choose a greater size, or --clip");
    states_.resize(static_cast<std::size_t>(Count()));
    sets_.resize(states_.size());
    suffixes_.emplace_back();
    if (!names_.IsUnique()) RequireOneNameEach();
}

void TileAccount::RequireOneNameEach() const {
    std::unordered_set<std::string> seen;
    for (std::int64_t tile = 0; tile < Count(); ++tile) {
        if (!seen.insert(StemOf(tile)).second)
            throw UsageError("--tile-names \"" + job_.tileNames + "\" gives two tiles the name \"" +
                             NameOf(tile) + "\"; add {row} and {column}");
    }
}

std::int64_t TileAccount::NumberOf(std::int64_t column, std::int64_t row) const {
    const CellRange& visited = grid_.Visited();
    return (row - visited.row) * visited.columns + column - visited.column;
}

std::string TileAccount::StemOf(std::int64_t tile) const {
    const std::int64_t column = ColumnOf(tile), row = RowOf(tile);
    const Point corner = grid_.CornerOf(column - 1, row - 1);
    return names_.Of({row, column, corner.X, corner.Y});
}

unsigned short TileAccount::SetOf(const std::vector<std::string>& suffixes) {
    const auto found = std::ranges::find(suffixes_, suffixes);
    if (found != suffixes_.end()) return static_cast<unsigned short>(found - suffixes_.begin());
    if (suffixes_.size() > std::numeric_limits<unsigned short>::max())
        throw RunError("the files that go with the tiles differ from tile to tile; choose another --format");
    suffixes_.push_back(suffixes);
    return static_cast<unsigned short>(suffixes_.size() - 1);
}

void TileAccount::Keep(const std::map<std::string, std::vector<std::string>>& there) {
    if (there.empty()) return;
    for (std::int64_t tile = 0; tile < Count(); ++tile) {
        const std::string stem = StemOf(tile);
        const auto found = there.find(stem + "." + extension_);
        if (found == there.end()) continue;
        std::vector<std::string> suffixes;
        for (const std::string& name : found->second) suffixes.push_back(name.substr(stem.size()));
        std::ranges::sort(suffixes);
        sets_[static_cast<std::size_t>(tile)] = SetOf(suffixes);
        Set(tile, State::Written);
    }
}

raster::TileWindow TileAccount::WholeWindow(std::int64_t tile) const {
    const PixelWindow w = grid_.WindowOf(ColumnOf(tile) - 1, RowOf(tile) - 1);
    return raster::ExactWindow(w.column, w.row, w.width, w.height);
}

void TileAccount::Place(std::int64_t tile, const raster::TileWindow& window) {
    if (window != WholeWindow(tile)) windows_[tile] = window;
}

void TileAccount::Publish(std::int64_t tile, const std::string& image, const MadeTile& made, WorkFolder& work,
                          const std::vector<gdal::MadeFile>& besides) {
    const std::string stem = StemOf(tile);
    const std::string folder = stem.substr(0, stem.rfind('/') + 1);
    std::vector<std::pair<std::string, std::string>> others;  // suffix and bytes
    for (const gdal::MadeFile& file : made.others) {
        const std::string name = folder + file.name;
        if (!name.starts_with(stem + "."))
            throw RunError("the format keeps \"" + file.name +
                           "\" beside its file, which is not named like it; choose another --format");
        others.emplace_back(name.substr(stem.size()), file.bytes);
    }
    for (const gdal::MadeFile& file : besides) others.emplace_back(file.name, file.bytes);
    std::ranges::sort(others);
    std::vector<std::string> from{image}, suffixes;
    WorkFolder::Entry names{stem + "." + extension_};
    for (const auto& [suffix, bytes] : others) {
        from.push_back(work.Path() + "/beside" + suffix);
        names.push_back(stem + suffix);
        suffixes.push_back(suffix);
        if (const auto failed = files::WriteWhole(from.back(), bytes))
            throw RunError("cannot write " + names.back() + ": " + failed.message());
    }
    work.Publish(from, names);
    sets_[static_cast<std::size_t>(tile)] = SetOf(suffixes);
    Set(tile, State::Written);
}

/// Of the whole cell, or what the clip area leaves of it.
Rectangle TileAccount::EnvelopeOf(std::int64_t tile) const {
    raster::TileWindow window = WholeWindow(tile);
    if (job_.clip) {
        const raster::TileWindow clip = grid_.PixelsOf(*job_.clip);
        window = {std::max(window.left, clip.left),
                  std::max(window.top, clip.top),
                  std::min(window.right, clip.right),
                  std::min(window.bottom, clip.bottom),
                  0,
                  0};
    }
    return grid_.PlaceOf(window);
}

PlacedTile TileAccount::TileAt(std::int64_t tile) const {
    const auto own = windows_.find(tile);
    const raster::TileWindow window = own == windows_.end() ? WholeWindow(tile) : own->second;
    return {NameOf(tile),          ColumnOf(tile), RowOf(tile), EnvelopeOf(tile),
            grid_.PlaceOf(window), window.columns, window.rows};
}

TileList TileAccount::Tiles() const {
    return [this](const std::function<void(const PlacedTile&)>& take) {
        for (std::int64_t tile = 0; tile < Count(); ++tile) {
            if (StateOf(tile) == State::Written) take(TileAt(tile));
        }
    };
}

std::vector<std::string> TileAccount::FilesOf(std::int64_t tile) const {
    const std::string stem = StemOf(tile);
    std::vector<std::string> names{stem + "." + extension_};
    for (const std::string& suffix : suffixes_[sets_[static_cast<std::size_t>(tile)]])
        names.push_back(stem + suffix);
    return names;
}

std::vector<std::string> TileAccount::Companions() const {
    std::vector<std::string> names;
    for (std::int64_t tile = 0; tile < Count(); ++tile) {
        if (StateOf(tile) != State::Written || sets_[static_cast<std::size_t>(tile)] == 0) continue;
        const std::vector<std::string> files = FilesOf(tile);
        names.insert(names.end(), files.begin() + 1, files.end());
    }
    return names;
}

int TileAccount::PartOf(std::int64_t tile, int parts) const {
    return PartOfCell(grid_.Whole(), ColumnOf(tile) - 1, RowOf(tile) - 1, parts);
}

std::vector<std::int64_t> TileAccount::Vanished(const std::string& folder) {
    std::vector<std::int64_t> gone;
    for (std::int64_t tile = 0; tile < Count(); ++tile) {
        if (StateOf(tile) != State::Written) continue;
        std::error_code missing;
        const std::filesystem::path path = folder + "/" + NameOf(tile);
        if (std::filesystem::is_regular_file(path, missing) && std::filesystem::file_size(path, missing) > 0)
            continue;
        Set(tile, State::Failed);
        gone.push_back(tile);
    }
    return gone;
}

std::int64_t TileAccount::CountOf(State state) const {
    return std::ranges::count(states_, state);
}

std::int64_t TileAccount::Resampled() const {
    return std::ranges::count_if(windows_, [&](const auto& entry) {
        return StateOf(entry.first) == State::Written && !entry.second.IsExact();
    });
}

std::int64_t TileAccount::Shifted() const {
    constexpr double kSamePlace = 1e-6;  // of a pixel
    return std::ranges::count_if(windows_, [&](const auto& entry) {
        if (StateOf(entry.first) != State::Written) return false;
        const raster::TileWindow a = grid_.PixelsOf(EnvelopeOf(entry.first)), &b = entry.second;
        return std::abs(a.left - b.left) > kSamePlace || std::abs(a.top - b.top) > kSamePlace ||
               std::abs(a.right - b.right) > kSamePlace || std::abs(a.bottom - b.bottom) > kSamePlace;
    });
}

}  // namespace orvo::tiling
