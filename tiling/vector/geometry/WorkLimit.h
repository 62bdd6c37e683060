// When work on a geometry has to end before it is done.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace orvo::geos {

/// As long as it lives, GEOS gives up on this thread as soon as the work is stopped; its calls then fail with
/// the reason. Scopes nest: an inner one has the outer one's word to heed, too.
class WorkLimit {
  public:
    using Clock = std::chrono::steady_clock;

    /// @param stopped whether the run is to end; asked often
    explicit WorkLimit(std::function<bool()> stopped);
    /// For work that may take so long.
    explicit WorkLimit(std::chrono::seconds most);
    ~WorkLimit();
    WorkLimit(const WorkLimit&) = delete;
    WorkLimit& operator=(const WorkLimit&) = delete;

    /// Why the work has to end now; empty where it may go on.
    static std::string Reason();
    /// Fails with number 440 and the reason.
    static void Require();

  private:
    /// @return the one around
    const WorkLimit* Enter() const;

    std::function<bool()> stopped_;
    Clock::time_point end_ = Clock::time_point::max();
    std::chrono::seconds most_{};
    const WorkLimit* outer_;
};

}  // namespace orvo::geos
