#include "tiling/raster/TileLedger.h"

namespace orvo::host {
namespace {
constexpr Long kStepsPerTile = 3;
constexpr std::size_t kStartTextLength = 29;  // "Tiling", padded; the image's name follows
constexpr const char* kChangeText = "Tiling: Change to ";
}  // namespace

std::string FileNameOf(const std::string& path) {
    return path.substr(path.find_last_of("/\\") + 1);
}

void TileLedger::AddReason(const std::string& reason) {
    (cells_.empty() ? early_ : cells_.back().reasons).push_back(reason);
}

void TileLedger::AddImage(const utility::WrittenImage& image) {
    if (!cells_.empty()) cells_.back().images.push_back(image);
}

void TileLedger::ShowProgress(const std::string& text, Long maxValue, bool step) {
    if (!step && maxValue > 0) {
        cellText_ = "Tiling " + text.substr(std::min(text.size(), kStartTextLength));
        running_ = true;
        display_.Start(maxValue / kStepsPerTile);
    } else if (!step) {
        Finish();
    } else if (text == cellText_) {
        BeginCell();
    } else if (!cells_.empty()) {
        // An image named "extern" makes the first stage look like the next cell: it is taken back.
        if (cellText_ == "Tiling extern" && text.starts_with(kChangeText) && cells_.size() > 1)
            cells_.pop_back();
        cells_.back().inside = true;
        display_.Note(text);
    }
}

void TileLedger::BeginCell() {
    Settle();
    CellRecord cell;
    const auto index = static_cast<Long>(cells_.size());
    cell.column = index % columns_;
    cell.row = index / columns_;
    cells_.push_back(std::move(cell));
    display_.Cell();
}

/// Gives the entries that have come since the last cell to the current one.
void TileLedger::Settle() {
    if (cells_.empty() || !dictionary_ || dictionary_->Count() == counted_) return;
    const auto keys = dictionary_->Keys();
    counted_ = dictionary_->Count();
    CellRecord& cell = cells_.back();
    cell.tile = keys.back();
    cell.envelope = dictionary_->Item(cell.tile);
    cell.inside = true;
}

void TileLedger::Finish() {
    if (!running_) return;
    running_ = false;
    Settle();
    display_.End();
}

}  // namespace orvo::host
