// Results worked out on several threads before somebody asks for them.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace orvo::tiling {

/// Works on indexes from 0 on in two steps. The first is made for one index after the other, by one thread at
/// a time, as for reading a source in its order; the second, which the first gives, by any thread.
template <class Result>
class Ahead {
  public:
    /// The second step. Empty where an index has no result ahead of time.
    using Finish = std::function<Result()>;
    /// What the first step gives.
    struct Begun {
        Finish finish;
        std::size_t size = 0;  ///< of what waits then
    };
    /// How far it is ahead of what was asked for.
    struct Limits {
        int most;  ///< indexes, at least 1
        /// No index is begun while so much waits; there may be more, by one index.
        std::size_t size = std::numeric_limits<std::size_t>::max();
    };

    /// @param count of the indexes @param threads 0 for nothing ahead of time; fewer where the system gives
    /// no more @param begin must live as long as this object; what it refers to, too
    Ahead(std::int64_t count, int threads, const Limits& limits, std::function<Begun(std::int64_t)> begin)
        : count_(count),
          mostSize_(limits.size),
          begin_(std::move(begin)),
          slots_(static_cast<std::size_t>(limits.most)) {
        threads_.reserve(static_cast<std::size_t>(threads));
        try {
            while (static_cast<int>(threads_.size()) < threads) threads_.emplace_back([this] { Work(); });
        } catch (const std::system_error&) {  // then fewer do it
        }
    }
    /// Waits for the steps that are being made.
    ~Ahead() {
        Stop();
        for (std::thread& thread : threads_) thread.join();
    }
    Ahead(const Ahead&) = delete;
    Ahead& operator=(const Ahead&) = delete;

    /// What was worked out for an index, once; what lies before it is given up. Waits where it is being
    /// worked out. Nothing where it was asked for before, has no result ahead of time, or `interrupted` holds
    /// meanwhile. Fails as a step of it failed.
    std::optional<Result> Take(std::int64_t index, const std::function<bool()>& interrupted) {
        constexpr auto kPause = std::chrono::milliseconds(50);
        std::unique_lock lock(mutex_);
        if (threads_.empty() || stopped_ || index < first_ || index >= count_) return std::nullopt;
        first_ = index;
        next_ = std::max(next_, index);
        changed_.notify_all();
        Slot& slot = SlotOf(index);
        while (slot.index != index || !slot.done) {
            if (changed_.wait_for(lock, kPause) == std::cv_status::timeout && interrupted()) {
                Stop(lock);
                return std::nullopt;
            }
        }
        ++first_;
        Release(slot);
        changed_.notify_all();
        if (const std::exception_ptr failure = std::exchange(slot.failure, nullptr))
            std::rethrow_exception(failure);
        return std::exchange(slot.result, std::nullopt);
    }

    /// How many threads work ahead of time.
    int Threads() const { return static_cast<int>(threads_.size()); }
    /// Whether steps should come to an end, for what is made is given up.
    bool IsStopped() const { return stopped_; }

  private:
    struct Slot {
        std::int64_t index = -1;
        bool done = false;
        std::size_t size = 0;
        std::optional<Result> result;
        std::exception_ptr failure;
    };

    Slot& SlotOf(std::int64_t index) { return slots_[static_cast<std::size_t>(index) % slots_.size()]; }
    void Stop() {
        const std::unique_lock lock(mutex_);
        Stop(lock);
    }
    void Stop(const std::unique_lock<std::mutex>& /*held*/) {
        stopped_ = true;
        changed_.notify_all();
    }

    /// The next index once there is room for its result; −1 at the end. Nothing here allocates memory.
    std::int64_t Next() {
        std::unique_lock lock(mutex_);
        const auto most = static_cast<std::int64_t>(slots_.size());
        const auto hasRoom = [&] { return next_ < first_ + most && (next_ == first_ || size_ < mostSize_); };
        changed_.wait(lock, [&] { return stopped_ || next_ >= count_ || hasRoom(); });
        if (stopped_ || next_ >= count_) return -1;
        Slot& slot = SlotOf(next_);
        Release(slot);
        slot.index = next_;
        slot.done = false;
        slot.result.reset();
        slot.failure = nullptr;
        return next_++;
    }

    void Release(Slot& slot) { size_ -= std::exchange(slot.size, 0); }
    void Hold(std::int64_t index, std::size_t size) {
        const std::lock_guard lock(mutex_);
        Slot& slot = SlotOf(index);
        if (slot.index != index || index < first_) return;
        slot.size = size;
        size_ += size;
    }

    void Work() {
        for (;;) {
            std::unique_lock turn(turn_);
            const std::int64_t index = Next();
            if (index < 0) return;
            std::optional<Result> result;
            std::exception_ptr failure;
            try {
                const Begun begun = begin_(index);
                Hold(index, begun.size);
                turn.unlock();
                if (begun.finish) result.emplace(begun.finish());
            } catch (...) {
                failure = std::current_exception();
            }
            if (turn.owns_lock()) turn.unlock();
            const std::lock_guard lock(mutex_);
            Slot& slot = SlotOf(index);
            if (slot.index != index) continue;  // it was given up
            slot.result = std::move(result);
            slot.failure = std::move(failure);
            slot.done = true;
            changed_.notify_all();
        }
    }

    const std::int64_t count_;
    const std::size_t mostSize_;
    const std::function<Begun(std::int64_t)> begin_;
    std::mutex turn_;   ///< to begin
    std::mutex mutex_;  ///< of what follows
    std::condition_variable changed_;
    std::vector<Slot> slots_;  ///< an index has the one of its remainder
    std::int64_t first_ = 0;   ///< that may still be asked for
    std::int64_t next_ = 0;    ///< to begin
    std::size_t size_ = 0;     ///< that waits
    std::atomic<bool> stopped_ = false;
    std::vector<std::thread> threads_;
};

/// The threads that a job gets: as many as were asked for, or one for each core that this process may use.
inline int ThreadsOf(int jobs) {
    return jobs > 0 ? jobs : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}
/// Those that work ahead of the component's own: one is none beside it.
inline int ThreadsAhead(int jobs) {
    const int threads = ThreadsOf(jobs);
    return threads > 1 ? threads : 0;
}

}  // namespace orvo::tiling
