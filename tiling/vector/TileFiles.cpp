#include "tiling/vector/TileFiles.h"

#include <filesystem>
#include <utility>

#include "platform/FailureInFlight.h"

namespace orvo::tiling {

Long TileFiles::ColumnOf(std::int64_t number) const {
    return static_cast<Long>(number % grid_.Plan().columns) + 1;
}

Long TileFiles::RowOf(std::int64_t number) const {
    return static_cast<Long>(number / grid_.Plan().columns) + 1;
}

std::string TileFiles::IdOf(std::int64_t number) const {
    return grid_.NameOf(ColumnOf(number), RowOf(number));
}

std::string TileFiles::NameOf(std::int64_t number) const {
    return IdOf(number) + "." + writer_.Extension();
}

std::string TileFiles::Write(std::int64_t number, std::int64_t pieces, const RecordSource& records,
                             WorkFolder& work) {
    const std::string name = NameOf(number);
    Entry entry{{name}, pieces};
    try {
        const auto kept = kept_.find(name);
        if (kept == kept_.end()) writer_.Write(work.Path() + "/" + name, IdOf(number), records);
        const auto others =
            kept != kept_.end() ? kept->second : work.PublishAll(name, writer_.WritesSideFiles());
        entry.files.insert(entry.files.end(), others.begin(), others.end());
    } catch (...) {
        work.Clear();
        return work.WithoutPath(FailureInFlight().Description());
    }
    Add(number, std::move(entry));
    return "";
}

std::vector<std::int64_t> TileFiles::Vanished(const std::string& folder) {
    std::vector<std::int64_t> gone;
    for (const auto& [number, entry] : tiles_) {
        std::error_code missing;
        if (!std::filesystem::is_regular_file(folder + "/" + entry.files.front(), missing))
            gone.push_back(number);
    }
    for (const std::int64_t number : gone) tiles_.erase(number);
    return gone;
}

PlacedTile TileFiles::Placed(std::int64_t number, const std::string& name) const {
    const Long column = ColumnOf(number), row = RowOf(number);
    const geos::Bounds b = grid_.BoundsOf(column, row);
    const Rectangle place{b.xMin, b.yMin, b.xMax, b.yMax};
    const std::string id = name.substr(0, name.size() - writer_.Extension().size() - 1);
    return {name, column, grid_.Plan().rows - row + 1, place, place, 0, 0, id, column, row};
}

TileList TileFiles::List() const {
    return [this](const auto& take) {
        for (const auto& [number, entry] : tiles_) take(Placed(number, entry.files.front()));
    };
}

std::vector<std::string> TileFiles::Companions() const {
    std::vector<std::string> names;
    for (const auto& [number, entry] : tiles_) {
        for (std::size_t i = 1; i < entry.files.size(); ++i) names.push_back(entry.files[i]);
    }
    return names;
}

}  // namespace orvo::tiling
