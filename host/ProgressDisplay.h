// Progress on a stream: a bar, or one JSON object per line.
#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "tiling/Callbacks.h"

namespace orvo::host {

enum class ProgressMode { Auto, Bar, Json, None };

class ProgressDisplay final : public tiling::IProgress {
  public:
    ProgressDisplay(std::ostream& out, ProgressMode mode) : out_(out), mode_(mode) {}

    void Start(std::int64_t steps) override;
    void Step() override;
    void Note(const std::string& text) override;
    void End() override;
    /// Takes the bar away, so that something else can be written; it comes back with the next step.
    void MakeRoom();

  private:
    void Draw();
    void Event(const char* name, const std::string& text = "");

    std::ostream& out_;
    ProgressMode mode_;
    std::int64_t steps_ = 0;
    std::int64_t begun_ = 0;
    bool drawn_ = false;
    std::chrono::steady_clock::time_point last_{};  ///< when the bar was drawn
};

}  // namespace orvo::host
