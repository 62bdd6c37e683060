#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>

#include "tiling/Ahead.h"

namespace orvo::tiling {
namespace {

using namespace std::chrono_literals;

/// What is made of an index, in whichever step: a third fails, some have nothing ahead of time.
enum class Kind { Result, FailsAtOnce, FailsLater, Nothing };

Kind KindOf(std::int64_t index) {
    return static_cast<Kind>(index * index % 7 % 4);
}

std::size_t SizeOf(std::int64_t index) {
    return static_cast<std::size_t>(index) % 4;
}

std::size_t Waiting(std::int64_t from, std::int64_t to) {
    std::size_t size = 0;
    for (std::int64_t index = from; index < to; ++index) {
        const Kind kind = KindOf(index);
        if (kind == Kind::Result || kind == Kind::FailsLater) size += SizeOf(index);
    }
    return size;
}

/// Every request is answered by the index's own result or failure, whatever is asked for: in order, again,
/// with gaps, or not to the end. The first steps are made in order and never side by side.
TEST(Ahead, AnswersWhatWasAskedForWhateverFails) {
    std::minstd_rand random(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same run each time
    for (int round = 0; round < 300; ++round) {
        constexpr std::int64_t kCount = 60;
        const int threads = static_cast<int>(random() % 5), most = 1 + static_cast<int>(random() % 9);
        std::int64_t begun = -1;
        std::atomic<int> beginning = 0;
        std::atomic<std::int64_t> asked = 0;
        const std::size_t mostSize = 1 + random() % 12;
        Ahead<std::string> ahead(kCount, threads, {most, mostSize},
                                 [&](std::int64_t index) -> Ahead<std::string>::Begun {
                                     EXPECT_EQ(++beginning, 1);
                                     EXPECT_GT(index, begun);
                                     EXPECT_LT(index, asked + 1 + most);
                                     EXPECT_TRUE(index <= asked + 1 || Waiting(asked + 1, index) < mostSize);
                                     begun = index;
                                     --beginning;
                                     if (KindOf(index) == Kind::FailsAtOnce)
                                         throw std::runtime_error("at once");
                                     if (KindOf(index) == Kind::Nothing) return {};
                                     const auto finish = [index] {
                                         if (index % 5 == 0) std::this_thread::sleep_for(100us);
                                         if (KindOf(index) == Kind::FailsLater) throw std::bad_alloc();
                                         return std::to_string(index);
                                     };
                                     return {finish, SizeOf(index)};
                                 });
        const bool toTheEnd = round % 3 != 0;
        for (std::int64_t index = 0; index < (toTheEnd ? kCount : kCount / 2);
             index += 1 + random() % 4 / 3) {
            asked = index;
            for (int again = 0; again < 2; ++again) {
                const bool has = threads > 0 && again == 0;
                std::string got = "nothing";
                try {
                    if (const auto result = ahead.Take(index, [] { return false; })) got = *result;
                } catch (const std::bad_alloc&) {
                    got = "later";
                } catch (const std::runtime_error& failure) {
                    got = failure.what();
                }
                const std::string results[] = {std::to_string(index), "at once", "later", "nothing"};
                EXPECT_EQ(got, has ? results[static_cast<int>(KindOf(index))] : "nothing") << index;
            }
        }
    }
}

TEST(Ahead, EndsWhenItIsInterruptedWhileAStepHangs) {
    const auto begin = std::chrono::steady_clock::now();
    {
        std::atomic<Ahead<int>*> running = nullptr;
        Ahead<int> ahead(9, 3, {3}, [&](std::int64_t) -> Ahead<int>::Begun {
            return {[&running] {
                while (running == nullptr || !running.load()->IsStopped()) std::this_thread::sleep_for(1ms);
                return 1;
            }};
        });
        running = &ahead;
        EXPECT_FALSE(ahead.Take(0, [] { return true; }));
        EXPECT_FALSE(ahead.Take(1, [] { return true; }));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
}

}  // namespace
}  // namespace orvo::tiling
