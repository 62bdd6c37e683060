#include "tiling/raster/Summary.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

#include "tiling/Errors.h"

namespace orvo::host {
namespace {

constexpr std::size_t kReasonsToSay = 5;

/// Equal texts once, in order of appearance, each with its count.
std::vector<std::pair<std::string, std::size_t>> Counted(const std::vector<std::string>& texts) {
    std::vector<std::pair<std::string, std::size_t>> groups;
    for (const std::string& text : texts) {
        auto group = groups.begin();
        while (group != groups.end() && group->first != text) ++group;
        if (group == groups.end()) {
            groups.emplace_back(text, 1);
        } else {
            ++group->second;
        }
    }
    return groups;
}

nlohmann::ordered_json OrNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text);
}

std::string Tiles(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " tile" : " tiles");
}

}  // namespace

void Summary::SetProducts(std::string index, std::string vrt, std::string preview) {
    index_ = std::move(index);
    vrt_ = std::move(vrt);
    preview_ = std::move(preview);
}

Long Summary::NotReached() const {
    return expected_ - written_ - outside_ - static_cast<Long>(failures_.size());
}

int Summary::ExitCode() const {
    if (interrupted_) return kExitInterrupted;
    const bool complete = failures_.empty() && errors_.empty() && NotReached() == 0 && shown_ == 0;
    return complete ? kExitDone : kExitIncomplete;
}

std::vector<std::string> Summary::AllNotices() const {
    std::vector<std::string> notices = notices_;
    for (const auto& [reason, count] : Counted(recoveries_)) {
        notices.push_back(Tiles(count) + " had to be exported instead of converted: " + reason);
    }
    return notices;
}

void Summary::Narrate(std::ostream& out, bool quiet, const std::string& folder) const {
    for (const std::string& error : errors_) out << "orvo-tile: " << error << '\n';
    std::vector<std::string> reasons;
    for (const CellFailure& failure : failures_) reasons.push_back(failure.reason);
    const auto groups = Counted(reasons);
    for (std::size_t i = 0; i < groups.size() && i < kReasonsToSay; ++i) {
        out << "orvo-tile: " << Tiles(groups[i].second) << " failed: " << groups[i].first << '\n';
    }
    if (groups.size() > kReasonsToSay) {
        out << "orvo-tile: more tiles failed for " << groups.size() - kReasonsToSay
            << " other reasons; the summary names them all\n";
    }
    if (interrupted_) out << "orvo-tile: interrupted\n";
    if (quiet) return;
    for (const std::string& notice : AllNotices()) out << "orvo-tile: note: " << notice << '\n';
    out << "orvo-tile: " << written_ << " of " << Tiles(static_cast<std::size_t>(expected_ - outside_))
        << " written to " << folder;
    if (outside_ > 0) out << "; " << outside_ << " outside the clip area";
    if (NotReached() > 0) out << "; " << NotReached() << " not reached";
    out << '\n' << std::flush;
}

std::string Summary::Json(const std::string& input, const std::string& folder) const {
    using Json = nlohmann::ordered_json;
    Json failures = Json::array();
    for (const CellFailure& failure : failures_) {
        failures.push_back({{"column", failure.column}, {"row", failure.row}, {"reason", failure.reason}});
    }
    const Json summary{{"input", input},
                       {"outdir", folder},
                       {"index", OrNull(index_)},
                       {"vrt", OrNull(vrt_)},
                       {"preview", OrNull(preview_)},
                       {"tiles",
                        {{"expected", expected_},
                         {"written", written_},
                         {"failed", failures_.size()},
                         {"outside", outside_},
                         {"not_reached", NotReached()}}},
                       {"failures", failures},
                       {"leftovers", leftovers_},
                       {"notices", AllNotices()},
                       {"errors", errors_},
                       {"interrupted", interrupted_}};
    return summary.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace orvo::host
