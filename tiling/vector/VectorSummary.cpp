#include "tiling/vector/VectorSummary.h"

#include <numeric>

#include "tiling/output/JsonText.h"

namespace orvo::tiling {
namespace {
constexpr std::size_t kFailuresToSay = 5;
}

std::int64_t VectorSummary::Skipped() const {
    return std::accumulate(skipped.begin(), skipped.end(), std::int64_t{0},
                           [](std::int64_t sum, const auto& reason) { return sum + reason.second; });
}

std::vector<std::string> VectorSummary::FailureLines() const {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < failures.size() && i < kFailuresToSay; ++i)
        lines.push_back("tile " + failures[i].tile + " failed: " + failures[i].reason);
    if (failures.size() > kFailuresToSay)
        lines.push_back(std::to_string(failures.size() - kFailuresToSay) +
                        " more tiles failed; the summary names them");
    return lines;
}

std::vector<std::string> VectorSummary::SkippedLines(bool quiet) const {
    std::vector<std::string> lines;
    if (quiet && lost == 0) return lines;
    for (const auto& [reason, count] : skipped)
        lines.push_back(Counted(count, "feature") + " skipped: " + reason);
    return lines;
}

std::string VectorSummary::ResultLine() const {
    return std::to_string(placed) + " of " + Counted(featuresIn, "feature") + " placed" +
           (isPart ? " in this part" : "") + ", as " + Counted(pieces, "piece") + " in " +
           Counted(written, "tile") + " of " + std::to_string(grid.columns) + " x " +
           std::to_string(grid.rows) + ", written to " + outdir;
}

std::string VectorSummary::AsJson() const {
    Json reasons = Json::array();
    for (const auto& [reason, count] : skipped) reasons.push_back({{"reason", reason}, {"features", count}});
    Json failed = Json::array();
    for (const TileFailure& failure : failures)
        failed.push_back({{"tile", failure.tile}, {"reason", failure.reason}});
    const std::int64_t total = grid.columns * grid.rows;
    const auto failureCount = static_cast<std::int64_t>(failures.size());
    const Json summary{
        {"input", input},
        {"layer", layer},
        {"outdir", outdir},
        {"index", OrNull(index)},
        {"skipped_file", OrNull(skippedFile)},
        {"preview", OrNull(preview)},
        {"features",
         {{"in", featuresIn},
          {"placed", placed},
          {isPart ? "not_in_this_part" : "skipped", isPart ? featuresIn - placed : Skipped()}}},
        {"skipped", reasons},
        {"pieces", pieces},
        {"covered_tiles_left_out", coveredLeftOut},
        {"grid",
         {{"columns", grid.columns},
          {"rows", grid.rows},
          {"tile_width", grid.width},
          {"tile_height", grid.height}}},
        {"tiles",
         {{"total", total},
          {"written", written},
          {"failed", failureCount},
          {"empty", total - occupied},
          {"not_reached", occupied - written - failureCount}}},
        {"failures", failed},
        {"notices", notices},
        {"errors", errors},
        {"interrupted", interrupted}};
    return TextOf(summary, 2) + "\n";
}

}  // namespace orvo::tiling
