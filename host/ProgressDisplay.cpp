#include "host/ProgressDisplay.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

#include "tiling/output/JsonText.h"

namespace orvo::host {
namespace {
constexpr int kBarWidth = 40;
constexpr std::chrono::milliseconds kRedraw{100};
}  // namespace

void ProgressDisplay::Start(std::int64_t steps) {
    steps_ = std::max<std::int64_t>(steps, 1);
    begun_ = 0;
    Event("start");
}

void ProgressDisplay::Step() {
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
    const std::int64_t done = std::min(begun_ - 1, steps_);
    const int filled = static_cast<int>(done * kBarWidth / steps_);
    out_ << "\r[" << std::string(static_cast<std::size_t>(filled), '#')
         << std::string(static_cast<std::size_t>(kBarWidth - filled), '.') << "] " << done << " of " << steps_
         << "\033[K" << std::flush;
    drawn_ = true;
}

void ProgressDisplay::Event(const char* name, const std::string& text) {
    if (mode_ != ProgressMode::Json) return;
    tiling::Json event{{"event", name}, {"cell", begun_}, {"of", steps_}};
    if (!text.empty()) event["text"] = text;
    out_ << tiling::TextOf(event) << std::endl;
}

}  // namespace orvo::host
