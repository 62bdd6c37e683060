#include "tiling/vector/geometry/WorkLimit.h"

#include <geos_c.h>

#include <mutex>
#include <utility>

#include "platform/RuntimeError.h"

namespace orvo::geos {
namespace {

thread_local const WorkLimit* innermost = nullptr;

/// GEOS calls this a million times a second. The library's own request to end is one for all threads, and
/// might end another's work; what is thrown here ends this thread's call, and no other.
void OnWork() {
    constexpr unsigned kCallsBetween = 64;
    thread_local unsigned calls = 0;
    if (++calls % kCallsBetween == 0) WorkLimit::Require();
}

}  // namespace

const WorkLimit* WorkLimit::Enter() const {
    static std::once_flag once;
    std::call_once(once, [] { GEOS_interruptRegisterCallback(&OnWork); });
    return std::exchange(innermost, this);
}

WorkLimit::WorkLimit(std::function<bool()> stopped) : stopped_(std::move(stopped)), outer_(Enter()) {}

WorkLimit::WorkLimit(std::chrono::seconds most) : end_(Clock::now() + most), most_(most), outer_(Enter()) {}

WorkLimit::~WorkLimit() {
    innermost = outer_;
}

std::string WorkLimit::Reason() {
    for (const WorkLimit* limit = innermost; limit != nullptr; limit = limit->outer_) {
        if (limit->stopped_ && limit->stopped_()) return "the run was interrupted";
        if (limit->end_ != Clock::time_point::max() && Clock::now() > limit->end_)
            return "mending its border takes longer than " + std::to_string(limit->most_.count()) +
                   " seconds; mend it first, for example with ogr2ogr -makevalid";
    }
    return {};
}

void WorkLimit::Require() {
    const std::string reason = Reason();
    if (!reason.empty()) throw RuntimeError(static_cast<Long>(Fault::AutomationError), reason);
}

}  // namespace orvo::geos
