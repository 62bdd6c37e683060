// Every platform call of an attempt fails once and for good, under every answer.
#pragma once

#include <functional>
#include <string>

#include "tests/component/Fixture.h"

namespace orvo {

/// What came of an attempt with one fault in it.
struct Disturbed {
    bool once;  ///< or for good
    Integer answer;
    std::string failed;  ///< the call, as "Envelope.XMin"
    bool threw = false;
    /// The fault struck what a handler itself needs, so that it may pass the procedure.
    bool aboutHandler = false;
    bool IsRetried() const { return once && answer == kRetry && !aboutHandler; }
};

template <class Base>
class FaultTest : public Base {
  protected:
    /// @param prepare makes a new world and what the attempt needs
    /// @param check sees a world that works again
    void FailEveryCall(const std::string& name, const std::function<void()>& prepare,
                       const std::function<void()>& act, const std::function<void(const Disturbed&)>& check) {
        prepare();
        this->world->FailCall(0, fake::Lasting::Once);
        act();
        const long calls = this->world->Calls();
        ASSERT_GT(calls, 10) << name;
        for (long n = 1; n <= calls; ++n) {
            for (const bool once : {true, false}) {
                for (const Integer answer : {kRetry, kNext, kLeave}) {
                    SCOPED_TRACE(testing::Message()
                                 << name << ", call " << n << (once ? " once" : " for good") << ", answer "
                                 << answer);
                    prepare();
                    check(Disturb(act, n, once, answer));
                }
            }
            if (testing::Test::HasFailure()) return;
        }
    }

  private:
    Disturbed Disturb(const std::function<void()>& act, long call, bool once, Integer answer) {
        fake::World& shared = *this->world;
        shared.answer = [&](const FailureView&) {
            constexpr std::size_t kPatience = 4;  // retries of a lasting failure before leaving
            return answer == kRetry && shared.failures.size() > kPatience ? kLeave : answer;
        };
        shared.FailCall(call, once ? fake::Lasting::Once : fake::Lasting::ForGood);
        Disturbed result{once, answer, ""};
        result.threw = NumberOf(act) != 0;
        result.failed = shared.FailedCall();
        shared.FailNothing();
        shared.answer = nullptr;
        EXPECT_NE(result.failed, "");
        result.aboutHandler = result.failed.starts_with("Clock.") || result.failed.starts_with("Desktop.");
        EXPECT_TRUE(!result.threw || result.aboutHandler || !once) << result.failed << " passed a procedure";
        return result;
    }
};

}  // namespace orvo
