#include "tiling/raster/PartRecord.h"

#include <map>
#include <utility>

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

void AddPart(const Json& record, TileAccount& account, RasterSummary& summary) {
    std::map<std::string, std::vector<std::string>> tiles;
    for (const auto& files : record.at("tiles").get<std::vector<std::vector<std::string>>>())
        tiles.emplace(files.at(0), std::vector<std::string>(files.begin() + 1, files.end()));
    account.Keep(tiles);
    const auto number = [&](const Json& cell) {
        return account.NumberOf(cell.at(0).get<std::int64_t>() - 1, cell.at(1).get<std::int64_t>() - 1);
    };
    for (const Json& cell : record.at("blank")) account.Set(number(cell), State::Blank);
    for (const Json& cell : record.at("outside")) account.Set(number(cell), State::Outside);
    for (const Json& w : record.at("windows"))
        account.Place(number(w), {w.at(2), w.at(3), w.at(4), w.at(5), w.at(6), w.at(7)});
    AppendTexts(record, "recoveries", summary.recoveries);
    AppendTexts(record, "leftovers", summary.leftovers);
    AppendTexts(record, "errors", summary.errors);
    summary.shown += record.at("shown").get<int>();
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
    Json record = PartHead(part, command);
    record.update({{"tiles", std::move(tiles)},
                   {"blank", CellsIn(account, State::Blank)},
                   {"outside", CellsIn(account, State::Outside)},
                   {"windows", std::move(windows)},
                   {"failures", std::move(failures)},
                   {"recoveries", summary.recoveries},
                   {"leftovers", summary.leftovers},
                   {"stretch", stretch},
                   {"errors", summary.errors},
                   {"shown", summary.shown}});
    return record;
}

std::string AddParts(const PartRecords& parts, TileAccount& account, RasterSummary& summary) {
    std::string stretch;
    parts.ForEach([&](const Json& record) {
        AddPart(record, account, summary);
        if (stretch.empty()) stretch = record.at("stretch").get<std::string>();
    });
    static_cast<void>(account.Vanished(summary.outdir));
    std::map<int, std::int64_t> missing;
    for (std::int64_t tile = 0; tile < account.Count(); ++tile) {
        const State state = account.StateOf(tile);
        if (state == State::NotReached || state == State::Failed)
            ++missing[account.PartOf(tile, parts.Count())];
    }
    parts.RequireNone(missing);
    return stretch;
}

}  // namespace orvo::tiling
