// What a run of the engine asks its caller, and tells it, while it works.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace orvo::tiling {

/// Hears how far a run has come.
class IProgress {
  public:
    virtual ~IProgress() = default;
    /// @param steps that will follow, at least 1
    virtual void Start(std::int64_t steps) = 0;
    /// The next step has begun.
    virtual void Step() = 0;
    /// Something about the current step.
    virtual void Note(const std::string& text) = 0;
    virtual void End() = 0;
};

/// All are called on the thread that runs the engine, and must outlive the run.
struct Callbacks {
    /// Asked often. Once it holds, the run ends: tiles that are there stay, and are listed.
    std::function<bool()> interrupted = [] { return false; };
    IProgress* progress = nullptr;  ///< null for none
    /// Hears what is about to be done, one sentence without a full stop.
    std::function<void(const std::string& text)> notice = [](const std::string&) {};
};

}  // namespace orvo::tiling
