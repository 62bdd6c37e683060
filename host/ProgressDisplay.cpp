#include "host/ProgressDisplay.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

namespace orvo::host {
namespace {
constexpr int kBarWidth = 40;
constexpr std::chrono::milliseconds kRedraw{100};
}  // namespace

void ProgressDisplay::Start(Long cells) {
    cells_ = std::max<Long>(cells, 1);
    begun_ = 0;
    Event("start");
}

void ProgressDisplay::Cell() {
    ++begun_;
    Event("cell");
    const auto now = std::chrono::steady_clock::now();
    if (mode_ != ProgressMode::Bar || now - last_ < kRedraw) return;
    last_ = now;
    Draw();
}

void ProgressDisplay::Note(const std::string& text) {
    Event("note", text);
}

void ProgressDisplay::End() {
    MakeRoom();
    Event("end");
}

void ProgressDisplay::MakeRoom() {
    if (!drawn_) return;
    out_ << "\r\033[K" << std::flush;
    drawn_ = false;
}

void ProgressDisplay::Draw() {
    const Long done = std::min(begun_ - 1, cells_);
    const int filled = static_cast<int>(static_cast<double>(done) / cells_ * kBarWidth);
    out_ << "\r[" << std::string(static_cast<std::size_t>(filled), '#')
         << std::string(static_cast<std::size_t>(kBarWidth - filled), '.') << "] " << done << " of " << cells_
         << "\033[K" << std::flush;
    drawn_ = true;
}

void ProgressDisplay::Event(const char* name, const std::string& text) {
    if (mode_ != ProgressMode::Json) return;
    nlohmann::ordered_json event{{"event", name}, {"cell", begun_}, {"of", cells_}};
    if (!text.empty()) event["text"] = text;
    out_ << event.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << std::endl;
}

}  // namespace orvo::host
