#include "tiling/Summary.h"

namespace orvo::tiling {

Outcome Summary::Result() const {
    if (interrupted) return Outcome::Interrupted;
    return errors.empty() && shown == 0 && HasAllTiles() ? Outcome::Complete : Outcome::Incomplete;
}

std::vector<std::string> Summary::Lines(bool quiet) const {
    std::vector<std::string> lines = errors;
    const auto add = [&](const std::vector<std::string>& more) {
        lines.insert(lines.end(), more.begin(), more.end());
    };
    add(FailureLines());
    if (interrupted) lines.emplace_back("interrupted");
    add(SkippedLines(quiet));
    if (quiet) return lines;
    for (const std::string& notice : AllNotices()) lines.push_back("note: " + notice);
    lines.push_back(ResultLine());
    return lines;
}

std::string Counted(std::int64_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace orvo::tiling
