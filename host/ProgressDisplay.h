// Progress on a stream: a bar, or one JSON object per line.
#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

#include "host/CommonOptions.h"

namespace orvo::host {

class ProgressDisplay {
  public:
    ProgressDisplay(std::ostream& out, ProgressMode mode) : out_(out), mode_(mode) {}

    void Start(Long cells);
    /// The next cell has begun.
    void Cell();
    /// Something about the current cell.
    void Note(const std::string& text);
    void End();
    /// Takes the bar away, so that something else can be written; it comes back with the next cell.
    void MakeRoom();

  private:
    void Draw();
    void Event(const char* name, const std::string& text = "");

    std::ostream& out_;
    ProgressMode mode_;
    Long cells_ = 0;
    Long begun_ = 0;
    bool drawn_ = false;
    std::chrono::steady_clock::time_point last_{};  ///< when the bar was drawn
};

}  // namespace orvo::host
