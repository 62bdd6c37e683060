#include "tiling/raster/PartRecord.h"

#include <filesystem>
#include <map>
#include <utility>

#include "tiling/Errors.h"
#include "tiling/output/EarlierRun.h"
#include "tiling/output/TileIndex.h"

namespace orvo::tiling {
namespace {

using State = TileAccount::State;

Json CellsIn(const TileAccount& account, State state) {
    Json cells = Json::array();
    for (std::int64_t tile = 0; tile < account.Count(); ++tile) {
        if (account.StateOf(tile) == state) cells.push_back({account.ColumnOf(tile), account.RowOf(tile)});
    }
    return cells;
}

/// A word as a shell takes it.
std::string Quoted(const std::string& word) {
    constexpr const char* kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=:,./@%^";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    std::string text = "'";
    for (const char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

}  // namespace

Json PartRecord(const PartNumber& part, const std::vector<std::string>& command, const TileAccount& account,
                const RasterSummary& summary, const std::string& stretch) {
    Json tiles = Json::array(), windows = Json::array(), failures = Json::array();
    for (std::int64_t tile = 0; tile < account.Count(); ++tile) {
        if (account.StateOf(tile) == State::Written) tiles.push_back(account.FilesOf(tile));
    }
    for (const auto& [tile, w] : account.Windows())
        windows.push_back({account.ColumnOf(tile), account.RowOf(tile), w.left, w.top, w.right, w.bottom,
                           w.columns, w.rows});
    for (const auto& failure : summary.failures)
        failures.push_back({{"column", failure.column}, {"row", failure.row}, {"reason", failure.reason}});
    return {{"generator", kGenerator},
            {"part", part.part},
            {"of", part.parts},
            {"command", command},
            {"tiles", std::move(tiles)},
            {"blank", CellsIn(account, State::Blank)},
            {"outside", CellsIn(account, State::Outside)},
            {"windows", std::move(windows)},
            {"failures", std::move(failures)},
            {"recoveries", summary.recoveries},
            {"leftovers", summary.leftovers},
            {"stretch", stretch},
            {"errors", summary.errors},
            {"shown", summary.shown}};
}

PartRecords::PartRecords(const std::string& folder) {
    std::map<int, std::string> found;
    int parts = 0;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
        const std::string name = entry.path().filename().string();
        const auto part = PartOfRecord(name);
        if (!part) continue;
        if (parts != 0 && parts != part->parts)
            throw RunError("OUTDIR holds records of " + std::to_string(parts) + " parts and of " +
                           std::to_string(part->parts) + "; remove those of one division");
        parts = part->parts;
        found[part->part] = name;
    }
    if (found.empty())
        throw RunError("OUTDIR holds no part of a job; make them with orvo-tile raster ... --part K/N");
    records_.resize(static_cast<std::size_t>(parts));
    for (const auto& [part, name] : found) {
        names_.push_back(name);
        if (part <= parts) records_[static_cast<std::size_t>(part - 1)] = ReadOurs(folder + "/" + name);
    }
    std::string lines;
    for (int part = 1; part <= parts; ++part) {
        if (records_[static_cast<std::size_t>(part - 1)].is_null())
            lines.append(lines.empty() ? "" : "; ")
                .append("part ")
                .append(std::to_string(part))
                .append(" by ")
                .append(Remedy(part));
    }
    if (!lines.empty()) throw RunError("parts are missing; make them, then merge again: " + lines);
}

std::string PartRecords::Remedy(int part) const {
    std::string text;
    for (const Json& record : records_) {
        if (record.is_null() || !text.empty()) continue;
        for (const std::string& word : record.value("command", std::vector<std::string>{}))
            text += Quoted(word) + " ";
    }
    return text + "--part " + std::to_string(part) + "/" + std::to_string(records_.size());
}

std::string PartRecords::Stretch() const {
    for (const Json& record : records_) {
        std::string text = record.value("stretch", "");
        if (!text.empty()) return text;
    }
    return "";
}

void PartRecords::AddTo(TileAccount& account, RasterSummary& summary, const std::string& folder) const {
    std::string lines;
    for (std::size_t i = 0; i < records_.size(); ++i) {
        const Json& record = records_[i];
        try {
            std::map<std::string, std::vector<std::string>> tiles;
            for (const auto& files : record.at("tiles").get<std::vector<std::vector<std::string>>>())
                tiles.emplace(files.at(0), std::vector<std::string>(files.begin() + 1, files.end()));
            account.Keep(tiles);
            const auto number = [&](const Json& cell) {
                return account.NumberOf(cell.at(0).get<std::int64_t>() - 1,
                                        cell.at(1).get<std::int64_t>() - 1);
            };
            for (const Json& cell : record.at("blank")) account.Set(number(cell), State::Blank);
            for (const Json& cell : record.at("outside")) account.Set(number(cell), State::Outside);
            for (const Json& w : record.at("windows"))
                account.Place(number(w), {w.at(2), w.at(3), w.at(4), w.at(5), w.at(6), w.at(7)});
            const auto append = [&](const char* member, std::vector<std::string>& to) {
                for (std::string& text : record.at(member).get<std::vector<std::string>>())
                    to.push_back(std::move(text));
            };
            append("recoveries", summary.recoveries);
            append("leftovers", summary.leftovers);
            append("errors", summary.errors);
            summary.shown += record.at("shown").get<int>();
        } catch (const std::exception& error) {
            throw RunError("\"" +
                           PartRecordName({static_cast<int>(i) + 1, static_cast<int>(records_.size())}) +
                           "\" is no record of a part (" + error.what() + ")");
        }
    }
    static_cast<void>(account.Vanished(folder));
    std::map<int, std::int64_t> missing;
    const auto parts = static_cast<int>(records_.size());
    for (std::int64_t tile = 0; tile < account.Count(); ++tile) {
        const State state = account.StateOf(tile);
        if (state == State::NotReached || state == State::Failed) ++missing[account.PartOf(tile, parts)];
    }
    for (const auto& [part, count] : missing)
        lines.append(lines.empty() ? "" : "; ")
            .append(Counted(count, "tile"))
            .append(" of part ")
            .append(std::to_string(part))
            .append(" by ")
            .append(Remedy(part));
    if (!lines.empty()) throw RunError("tiles are missing; make them, then merge again: " + lines);
}

}  // namespace orvo::tiling
