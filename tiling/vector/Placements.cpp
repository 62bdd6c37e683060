#include "tiling/vector/Placements.h"

#include <charconv>

#include "tiling/Errors.h"

namespace orvo::tiling {

void Placements::Add(const Placement& placement) {
    const auto letter = static_cast<char>('a' + (placement.isPlaced ? 1 : 0) + (placement.isLeftOut ? 2 : 0));
    if (runs_.empty() || runs_.back().letter != letter) runs_.push_back({letter, 0});
    ++runs_.back().count;
    if (!placement.failure.empty()) failures_[count_] = placement.failure;
    ++count_;
}

Placement Placements::Next() {
    if (run_ < runs_.size() && inRun_ == runs_[run_].count) {
        ++run_;
        inRun_ = 0;
    }
    if (run_ == runs_.size())
        throw RunError("INPUT has more geometries than its parts have met; was it changed meanwhile?");
    const int bits = runs_[run_].letter - 'a';
    const auto failure = failures_.find(read_);
    ++inRun_;
    ++read_;
    return {(bits & 1) != 0, (bits & 2) != 0, failure == failures_.end() ? "" : failure->second};
}

Json Placements::AsJson() const {
    std::string text;
    for (const Run& run : runs_) text += std::to_string(run.count) + run.letter;
    Json failures = Json::array();
    for (const auto& [number, reason] : failures_) failures.push_back({number, reason});
    return {{"runs", text}, {"failures", std::move(failures)}};
}

Placements Placements::FromJson(const Json& json) {
    Placements made;
    const auto text = json.at("runs").get<std::string>();
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end;) {
        Run run{};
        const auto [next, error] = std::from_chars(at, end, run.count);
        if (error != std::errc{} || next == end || *next < 'a' || *next > 'd' || run.count < 1)
            throw RunError("the geometries' placements make no sense");
        run.letter = *next;
        made.runs_.push_back(run);
        made.count_ += run.count;
        at = next + 1;
    }
    for (const Json& failure : json.at("failures"))
        made.failures_[failure.at(0).get<std::int64_t>()] = failure.at(1).get<std::string>();
    return made;
}

}  // namespace orvo::tiling
