#include "tiling/raster/RasterSummary.h"

#include <algorithm>
#include <utility>

#include "tiling/output/JsonText.h"

namespace orvo::tiling {
namespace {

constexpr std::size_t kReasonsToSay = 5;

/// Equal texts once, in order of appearance, each with its count.
std::vector<std::pair<std::string, std::int64_t>> Grouped(const std::vector<std::string>& texts) {
    std::vector<std::pair<std::string, std::int64_t>> groups;
    for (const std::string& text : texts) {
        const auto group = std::ranges::find(groups, text, &std::pair<std::string, std::int64_t>::first);
        if (group == groups.end())
            groups.emplace_back(text, 1);
        else
            ++group->second;
    }
    return groups;
}

}  // namespace

std::vector<std::string> RasterSummary::AllNotices() const {
    std::vector<std::string> all = notices;
    for (const auto& [reason, count] : Grouped(recoveries))
        all.push_back(Counted(count, "tile") + " had to be exported instead of converted: " + reason);
    return all;
}

std::vector<std::string> RasterSummary::FailureLines() const {
    std::vector<std::string> reasons, lines;
    for (const CellFailure& failure : failures) reasons.push_back(failure.reason);
    const auto groups = Grouped(reasons);
    for (std::size_t i = 0; i < groups.size() && i < kReasonsToSay; ++i)
        lines.push_back(Counted(groups[i].second, "tile") + " failed: " + groups[i].first);
    if (groups.size() > kReasonsToSay)
        lines.push_back("more tiles failed for " + std::to_string(groups.size() - kReasonsToSay) +
                        " other reasons; the summary names them all");
    return lines;
}

std::string RasterSummary::ResultLine() const {
    std::string line = std::to_string(written) + " of " + Counted(expected - blank - outside, "tile") +
                       " written to " + outdir;
    if (blank > 0) line += "; " + std::to_string(blank) + " blank";
    if (outside > 0) line += "; " + std::to_string(outside) + " outside the clip area";
    if (NotReached() > 0) line += "; " + std::to_string(NotReached()) + " not reached";
    return line;
}

std::string RasterSummary::AsJson() const {
    Json failed = Json::array();
    for (const CellFailure& failure : failures)
        failed.push_back({{"column", failure.column}, {"row", failure.row}, {"reason", failure.reason}});
    const Json summary{{"input", input},
                       {"inputs", inputs},
                       {"outdir", outdir},
                       {"index", OrNull(index)},
                       {"vrt", OrNull(vrt)},
                       {"preview", OrNull(preview)},
                       {"tiles",
                        {{"expected", expected},
                         {"written", written},
                         {"failed", failures.size()},
                         {"blank", blank},
                         {"outside", outside},
                         {"not_reached", NotReached()}}},
                       {"failures", failed},
                       {"leftovers", leftovers},
                       {"notices", AllNotices()},
                       {"errors", errors},
                       {"interrupted", interrupted}};
    return TextOf(summary, 2) + "\n";
}

}  // namespace orvo::tiling
