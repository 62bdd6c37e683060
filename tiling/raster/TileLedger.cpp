#include "tiling/raster/TileLedger.h"

#include <algorithm>
#include <utility>

#include "support/SystemPath.h"

namespace orvo::tiling {
namespace {

constexpr Long kStepsPerTile = 3;

bool IsFor(const CellPlan::Cell& cell, const utility::Request& asked) {
    if (asked.window) return *asked.window == cell.window;
    if (!asked.extent) return false;
    const Rectangle& e = cell.extent;
    return asked.extent->xMin == e.xMin && asked.extent->yMin == e.yMin && asked.extent->xMax == e.xMax &&
           asked.extent->yMax == e.yMax;
}

}  // namespace

std::string PlainReason(std::string reason, const std::string& target) {
    for (const std::string& name : {target, SystemPath(target)}) {
        for (std::size_t at = reason.find(name); !name.empty() && at != std::string::npos;
             at = reason.find(name)) {
            reason.replace(at, name.size(), "the tile");
        }
    }
    for (char& c : reason) {
        if (c == '\n' || c == '\r') c = ' ';
    }
    while (reason.ends_with(' ')) reason.pop_back();
    return reason.empty() ? "no reason was given" : reason;
}

void TileLedger::AddEnvelope() {
    if (!running_) return;
    CollectEntries();
    note_.clear();
    cells_.emplace_back();
    if (progress_ != nullptr) progress_->Step();
}

/// The walk goes on in one direction: what is asked for lies in its present cell, or in one that it came to
/// without asking for an envelope.
std::int64_t TileLedger::IndexOf(const utility::Request& asked) const {
    auto cell = std::max(static_cast<std::int64_t>(cells_.size()) - 1, std::int64_t{0});
    if (!asked.window && !asked.extent) return cell;  // whatever was exported there
    while (cell < plan_.Count() && !IsFor(plan_.At(cell), asked)) ++cell;
    return cell;
}

CellRecord& TileLedger::CellOf(const utility::Request& asked) {
    if (cells_.empty()) cells_.emplace_back();
    const auto at = static_cast<std::int64_t>(cells_.size()) - 1;
    const std::int64_t cell = IndexOf(asked);
    if (cell < plan_.Count() && cell > at) {
        CollectEntries();
        cells_.resize(static_cast<std::size_t>(cell) + 1);
    }
    return cells_.back();
}

void TileLedger::AddFailure(const utility::Request& asked, const std::string& reason) {
    CellOf(asked).reasons.push_back(reason);
}

void TileLedger::AddImage(const utility::WrittenImage& image) {
    CellOf(image.asked).images.push_back(image);
}

void TileLedger::AddReason(const std::string& reason) {
    (cells_.empty() ? early_ : cells_.back().reasons).push_back(reason);
}

void TileLedger::CollectEntries() {
    if (cells_.empty() || !dictionary_ || dictionary_->Count() == collected_) return;
    collected_ = dictionary_->Count();
    CellRecord& cell = cells_.back();
    cell.tile = dictionary_->Keys().back();
    onTile_(static_cast<std::int64_t>(cells_.size()) - 1, cell);
}

void TileLedger::Finish() {
    CollectEntries();
    if (std::exchange(running_, false) && progress_ != nullptr) {
        PassNote();
        progress_->End();
    }
}

void TileLedger::ShowMessage(const std::string& text) {
    if (progress_ != nullptr) progress_->Note(text);
}

void TileLedger::ShowProgress(const std::string& text, Long maxValue, bool step) {
    if (!step && maxValue > 0) {
        running_ = true;
        if (progress_ != nullptr) progress_->Start(maxValue / kStepsPerTile);
    } else if (!step) {
        Finish();
    } else {
        PassNote();
        note_ = text;
    }
}

void TileLedger::PassNote() {
    if (!note_.empty() && progress_ != nullptr) progress_->Note(note_);
    note_.clear();
}

}  // namespace orvo::tiling
