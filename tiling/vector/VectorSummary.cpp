#include "tiling/vector/VectorSummary.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "tiling/Errors.h"

namespace orvo::host {
namespace {

constexpr std::size_t kFailuresToSay = 5;

using Json = nlohmann::ordered_json;

Json OrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

std::string Count(std::int64_t count, const char* thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace

std::int64_t VectorSummary::Skipped() const {
    std::int64_t sum = 0;
    for (const auto& [reason, count] : skipped) sum += count;
    return sum;
}

int VectorSummary::ExitCode() const {
    if (interrupted) return kExitInterrupted;
    const bool complete =
        errors.empty() && failures.empty() && lost == 0 && shown == 0 && written == occupied;
    return complete ? kExitDone : kExitIncomplete;
}

void VectorSummary::Narrate(std::ostream& out, bool quiet) const {
    for (const std::string& error : errors) out << "orvo-tile: " << error << '\n';
    for (std::size_t i = 0; i < failures.size() && i < kFailuresToSay; ++i)
        out << "orvo-tile: tile " << failures[i].tile << " failed: " << failures[i].reason << '\n';
    if (failures.size() > kFailuresToSay)
        out << "orvo-tile: " << failures.size() - kFailuresToSay
            << " more tiles failed; the summary names them\n";
    if (interrupted) out << "orvo-tile: interrupted\n";
    if (quiet && lost == 0) return;
    for (const auto& [reason, count] : skipped)
        out << "orvo-tile: " << Count(count, "feature") << " skipped: " << reason << '\n';
    if (quiet) return;
    for (const std::string& notice : notices) out << "orvo-tile: note: " << notice << '\n';
    out << "orvo-tile: " << placed << " of " << Count(featuresIn, "feature") << " placed, as "
        << Count(pieces, "piece") << " in " << Count(written, "tile") << " of " << grid.columns << " x "
        << grid.rows << ", written to " << outdir << '\n'
        << std::flush;
}

std::string VectorSummary::Text() const {
    Json reasons = Json::array();
    for (const auto& [reason, count] : skipped) reasons.push_back({{"reason", reason}, {"features", count}});
    Json failed = Json::array();
    for (const TileFailure& failure : failures)
        failed.push_back({{"tile", failure.tile}, {"reason", failure.reason}});
    const std::int64_t total = grid.columns * grid.rows;
    const auto failureCount = static_cast<std::int64_t>(failures.size());
    const Json summary{{"input", input},
                       {"layer", layer},
                       {"outdir", outdir},
                       {"index", OrNull(index)},
                       {"skipped_file", OrNull(skippedFile)},
                       {"preview", OrNull(preview)},
                       {"features", {{"in", featuresIn}, {"placed", placed}, {"skipped", Skipped()}}},
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
    return summary.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace orvo::host
