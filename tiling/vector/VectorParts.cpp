#include "tiling/vector/VectorParts.h"

#include <map>
#include <utility>

namespace orvo::tiling {
namespace {

void AddTiles(const Json& record, TileFiles& tiles) {
    const Json &files = record.at("tiles"), &numbers = record.at("numbers"), &pieces = record.at("pieces");
    for (std::size_t i = 0; i < files.size(); ++i)
        tiles.Add(numbers.at(i), {files.at(i).get<std::vector<std::string>>(), pieces.at(i)});
}

}  // namespace

Json VectorPartRecord(const Json& head, const TileFiles& tiles, const std::vector<std::int64_t>& missing,
                      const Placements& placements, const VectorSummary& summary, const Json& findings) {
    Json files = Json::array(), numbers = Json::array(), pieces = Json::array();
    for (const auto& [number, entry] : tiles.All()) {
        files.push_back(entry.files);
        numbers.push_back(number);
        pieces.push_back(entry.pieces);
    }
    Json failures = Json::array();
    for (const auto& failure : summary.failures)
        failures.push_back({{"tile", failure.tile}, {"reason", failure.reason}});
    Json record = head;
    record.update({{"tiles", std::move(files)},
                   {"numbers", std::move(numbers)},
                   {"pieces", std::move(pieces)},
                   {"leftovers", Json::array()},
                   {"missing", missing},
                   {"failures", std::move(failures)},
                   {"covered_tiles_left_out", summary.coveredLeftOut},
                   {"placements", placements.AsJson()},
                   {"findings", findings},
                   {"shown", summary.shown}});
    return record;
}

VectorParts::VectorParts(const PartRecords& parts, VectorGrid& grid, PieceWriter& writer, TileFiles& tiles,
                         VectorSummary& summary) {
    std::vector<std::int64_t> missing;
    parts.ForEach([&](const Json& record) {
        AddTiles(record, tiles);
        for (const Json& number : record.at("missing")) missing.push_back(number);
        placements_.push_back(Placements::FromJson(record.at("placements")));
        writer.AddFindings(record.at("findings"));
        summary.coveredLeftOut += record.at("covered_tiles_left_out").get<std::int64_t>();
        summary.shown += record.at("shown").get<int>();
    });
    for (const std::int64_t number : tiles.Vanished(summary.outdir)) missing.push_back(number);
    const GridPlan& plan = grid.Plan();
    std::map<int, std::int64_t> byPart;
    for (const std::int64_t number : missing)
        ++byPart[PartOfCell({0, 0, plan.columns, plan.rows}, number % plan.columns, number / plan.columns,
                            parts.Count())];
    parts.RequireNone(byPart);
}

Placement VectorParts::Next() {
    Placement whole;
    for (Placements& part : placements_) {
        Placement one = part.Next();
        whole.isPlaced = whole.isPlaced || one.isPlaced;
        whole.isLeftOut = whole.isLeftOut || one.isLeftOut;
        if (!one.failure.empty()) whole.failure = std::move(one.failure);
    }
    return whole;
}

}  // namespace orvo::tiling
