// The procedure protocol under all three answers, and the call-stack list.
#include <new>
#include <stdexcept>

#include "errorreport/Version.h"
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

constexpr ProcedureText kOuter{"[mod] Public Sub Outer()", "mod", "Outer"};
constexpr ProcedureText kInner{"[mod] Private Function Inner() As Long", "mod", "Inner"};

[[noreturn]] void Fail() {
    throw RuntimeError(Fault::Overflow);
}

class ProtocolTest : public ComponentTest {};

TEST_F(ProtocolTest, RetryRunsTheStatementAgainFromItsStartUntilItWorks) {
    AlwaysAnswer(kRetry);
    int runs = 0;
    std::string log;
    Procedure<void>(kOuter).Run([&](Statements& run) {
        run([&] { log += "a"; });
        run([&] {
            log += "b";
            if (++runs < 4) Fail();
            log += "!";
        });
        run([&] { log += "c"; });
    });
    EXPECT_EQ(log, "abbbb!c");
    EXPECT_EQ(world->failures.size(), 3U);
    EXPECT_EQ(Trace().Count(), 1U) << "a retry is no new entry";
    EXPECT_EQ(world->beeps, 3);
}

TEST_F(ProtocolTest, SkippingLeavesTheTargetAndGoesOnWithTheNextStatement) {
    AlwaysAnswer(kNext);
    Long value = 7;
    const Long result = Procedure<Long>(kInner).Run([&](Statements& run, Long& r) {
        run([&] {
            const auto compute = []() -> Long { Fail(); };
            value = compute();
        });
        run([&] { r = value + 1; });
    });
    EXPECT_EQ(value, 7);
    EXPECT_EQ(result, 8);
}

TEST_F(ProtocolTest, LeavingReturnsTheResultAsFarAsItWasAssigned) {
    for (const Integer choice : {Integer{2}, Integer{3}, Integer{-1}, Integer{99}}) {
        AlwaysAnswer(choice);
        bool reached = false;
        const auto body = [&](bool assignFirst) {
            return Procedure<Long>(kInner).Run([&](Statements& run, Long& r) {
                if (assignFirst) run([&] { r = 5; });
                run([] { Fail(); });
                run([&] { reached = true; });
            });
        };
        EXPECT_EQ(body(true), 5) << choice;
        EXPECT_EQ(body(false), 0) << choice;
        EXPECT_FALSE(reached) << choice;
    }
}

TEST_F(ProtocolTest, SkippedConditionEntersItsBlockAndSkippedLoopTestRunsTheBody) {
    AlwaysAnswer(kNext);
    bool entered = false;
    int rounds = 0;
    Procedure<void>(kOuter).Run([&](Statements& run) {
        if (run.Test([]() -> bool { Fail(); })) run([&] { entered = true; });
        while (run.Test([&] {
            if (rounds == 0) Fail();
            return rounds < 2;
        })) {
            run([&] { ++rounds; });
        }
    });
    EXPECT_TRUE(entered);
    EXPECT_EQ(rounds, 2);
    EXPECT_EQ(world->failures.size(), 2U);
}

TEST_F(ProtocolTest, LoopReadsItsLimitOnceAndCountsPastIt) {
    int reads = 0;
    Long i = 0;
    Long sum = 0;
    Procedure<void>(kOuter).Run([&](Statements& run) {
        run.For(
            i, 2, [&] { return ++reads, 4; }, [&] { run([&] { sum += i; }); });
    });
    EXPECT_EQ(sum, 9);
    EXPECT_EQ(i, 5);
    EXPECT_EQ(reads, 1);
    Procedure<void>(kOuter).Run([&](Statements& run) {
        run.For(
            i, 3, [] { return 2; }, [&] { sum = 0; });
    });
    EXPECT_EQ(i, 3) << "an empty range still sets the counter";
    EXPECT_EQ(sum, 9);
}

TEST_F(ProtocolTest, LoopWhoseLimitFailsIsRetriedLeftOrRunOnceAndThenReportedAtItsEnd) {
    Long i = 42;
    int bodies = 0;
    int reads = 0;
    const auto loop = [&](bool heals) {
        reads = bodies = 0;
        i = 42;
        Procedure<void>(kOuter).Run([&](Statements& run) {
            run.For(
                i, 0,
                [&]() -> Long {
                    if (!heals || reads++ == 0) Fail();
                    return 1;
                },
                [&] { run([&] { ++bodies; }); });
        });
    };
    Answer({kRetry});
    loop(true);
    EXPECT_EQ(bodies, 2);
    Answer({kLeave});
    loop(false);
    EXPECT_EQ(bodies, 0);
    world->failures.clear();
    Answer({kNext, kNext});
    loop(false);
    EXPECT_EQ(bodies, 1);
    EXPECT_EQ(i, 42) << "the counter was never set";
    ASSERT_EQ(world->failures.size(), 2U);
    EXPECT_EQ(ShownError(1), "92 (For loop not initialized)");
}

TEST_F(ProtocolTest, EarlyExitAndLeavingReleaseLocalsAndAskNobody) {
    auto local = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = local;
    Answer({kLeave});
    Procedure<void>(kOuter).Run([held = std::move(local)](Statements& run) mutable {
        const auto own = std::move(held);
        run([] { Fail(); });
    });
    EXPECT_TRUE(watch.expired());
    world->failures.clear();
    Procedure<void>(kOuter).Run([&](Statements& run) {
        if (run.Test([] { return true; })) return;
        run([] { Fail(); });
    });
    EXPECT_TRUE(world->failures.empty());
}

TEST_F(ProtocolTest, CalleeHandlesItsOwnFailureAndTheCallerGoesOn) {
    Answer({kLeave});
    Long got = -1;
    bool after = false;
    Procedure<void>(kOuter).Run([&](Statements& run) {
        run([&] {
            got = Procedure<Long>(kInner).Run([](Statements& inner, Long& r) {
                inner([&] { r = 3; });
                inner([] { Fail(); });
            });
        });
        run([&] { after = true; });
    });
    EXPECT_EQ(got, 3);
    EXPECT_TRUE(after);
    ASSERT_EQ(world->failures.size(), 1U);
    EXPECT_EQ(ShownLabel(0), "Inner");
}

/// A dialog that fails where it is told to.
class BrokenDialog : public IErrorDialog {
  public:
    bool entryFails = false;
    int handlerFailures = 0;  ///< how many calls of OnError fail before it answers
    std::vector<std::string> handled;
    void CallStack(std::string&) override {
        if (entryFails) throw RuntimeError(1, "entry");
    }
    Integer OnError(const std::string&, const std::string& AktProc) override {
        handled.push_back(AktProc + ":" + CurrentFailure().description);
        if (handlerFailures-- > 0) throw RuntimeError(2, "log not writable");
        return kNext;
    }
};

TEST_F(ProtocolTest, FailureInsideTheHandlerEndsTheProcedureAndReachesTheCallersOwnHandler) {
    auto owned = std::make_unique<BrokenDialog>();
    BrokenDialog& dialog = *owned;
    SetErrorDialog(std::move(owned));
    dialog.handlerFailures = 1;
    bool innerWentOn = false;
    bool outerWentOn = false;
    Procedure<void>(kOuter).Run([&](Statements& run) {
        run([&] {
            Procedure<void>(kInner).Run([&](Statements& inner) {
                inner([] { Fail(); });
                inner([&] { innerWentOn = true; });
            });
        });
        run([&] { outerWentOn = true; });
    });
    EXPECT_FALSE(innerWentOn);
    EXPECT_TRUE(outerWentOn);
    EXPECT_THAT(dialog.handled, testing::ElementsAre("Inner:Overflow", "Outer:log not writable"));
    EXPECT_EQ(CurrentFailure().number, 0) << "no failure is pending afterwards";

    dialog.handlerFailures = 1;
    EXPECT_THROW(Procedure<void>(kOuter).Run([](Statements& run) { run([] { Fail(); }); }), RuntimeError)
        << "without a caller of its own kind it is the host's failed call";
}

TEST_F(ProtocolTest, FailureOfTheEntryReachesTheCallerUnlessTheHandlerIsArmedBefore) {
    auto owned = std::make_unique<BrokenDialog>();
    BrokenDialog& dialog = *owned;
    SetErrorDialog(std::move(owned));
    dialog.entryFails = true;
    bool ran = false;
    const auto body = [&](Statements& run) { run([&] { ran = true; }); };
    EXPECT_THROW(Procedure<void>(kOuter).Run(body), RuntimeError);
    EXPECT_FALSE(ran);
    EXPECT_TRUE(dialog.handled.empty());
    EXPECT_NO_THROW(Procedure<void>(kOuter, Armed::BeforeEntry).Run(body));
    EXPECT_TRUE(ran);
    EXPECT_THAT(dialog.handled, testing::ElementsAre("Outer:entry"));
}

TEST_F(ProtocolTest, EveryExceptionBecomesANumberedFailure) {
    AlwaysAnswer(kNext);
    int failingLine = 0;
    Procedure<void>(kOuter).Run([&](Statements& run) {
        run([] { throw RuntimeError(-2147220991, "platform text"); });
        run([] { throw std::bad_alloc(); });
        run([] { throw std::logic_error("odd"); });
        failingLine = __LINE__ + 1;
        run([] { throw 1; });
    });
    ASSERT_EQ(world->failures.size(), 4U);
    EXPECT_EQ(ShownError(0), "-2147220991 (platform text)");
    EXPECT_EQ(ShownError(1), "7 (Out of memory)");
    EXPECT_EQ(ShownError(2), "440 (odd)");
    EXPECT_EQ(ShownError(3), "440 (Automation error)");
    EXPECT_EQ(world->failures[3].rows[3].text, std::to_string(failingLine));
}

TEST_F(ProtocolTest, CallStackKeepsTheTwentyNewestWithTheirTimeOfEntry) {
    world->now = {2024, 3, 9, 4, 3, 2};
    Procedure<void>(kOuter).Run([](Statements&) {});
    world->now.hour = 23;
    for (int i = 0; i < 19; ++i) Procedure<void>(kInner).Run([](Statements&) {});
    ASSERT_EQ(Trace().Count(), 20U);
    EXPECT_EQ(Trace().At(19), "04:03:02 [mod] Public Sub Outer()");
    Procedure<void>(kInner).Run([](Statements&) {});
    EXPECT_EQ(Trace().Count(), 20U);
    EXPECT_EQ(Trace().At(0), "23:03:02 [mod] Private Function Inner() As Long");
    EXPECT_EQ(Trace().At(19), Trace().At(0)) << "the first entry is gone";
}

/// A clock without any cost of its own.
class StandingClock : public IClock {
  public:
    std::int64_t Seconds() override { return 1; }
    LocalTime Local(std::int64_t) override { return {}; }
};

TEST_F(ProtocolTest, EntryAllocatesNothingOnceTheListIsFull) {
    platform::Current().clock = std::make_shared<StandingClock>();
    const auto enter = [] { Procedure<void>(kOuter).Run([](Statements& run) { run([] {}); }); };
    for (int i = 0; i < 25; ++i) enter();
    const long before = AllocationCount();
    for (int i = 0; i < 100; ++i) enter();
    EXPECT_EQ(AllocationCount(), before);
}

TEST_F(ProtocolTest, DialogShowsTheFailureInTheLanguageOfTheDayAndKeepsTheLastChoice) {
    const auto fail = [] {
        bool again = true;
        Procedure<void>(kOuter).Run([&](Statements& run) {
            run([&] {
                if (again) {
                    again = false;
                    throw RuntimeError(Fault::ObjectNotSet);
                }
            });
        });
    };
    LangOffset() = 10000;
    world->answer = [](const FailureView&) { return std::nullopt; };  // the window is closed without a choice
    fail();
    ASSERT_EQ(world->failures.size(), 1U) << "nothing was ever clicked: that is a retry";
    const FailureView& view = world->failures[0];
    EXPECT_EQ(view.title, "WARNING! an error has occured ...");
    EXPECT_EQ(view.rows[0].caption, "Error description:");
    EXPECT_EQ(view.rows[0].text, "91 (Object variable or With block variable not set)");
    EXPECT_EQ(view.callStackCaption, "CallStack:");
    EXPECT_EQ(view.choices[2], "&Exit Procedure");
    EXPECT_EQ(view.programInfo, std::string("Orvo_Tile  V") + std::to_string(kVersionMajor) + "." +
                                    std::to_string(kVersionMinor) + "." + std::to_string(kVersionRevision));
    EXPECT_THAT(view.callStack, testing::ElementsAre("14:25:07 [mod] Public Sub Outer()"));
    dynamic_cast<Ferrow&>(GlobalErrorDialog()).SetProgInfo("My host 2");
    Answer({kNext});
    fail();
    world->answer = [](const FailureView&) { return std::nullopt; };
    fail();
    EXPECT_EQ(world->failures.size(), 3U);
    EXPECT_EQ(world->failures[2].programInfo, "My host 2");
    EXPECT_EQ(Ferrow::LPSTRToVBString(std::string("ab\0c", 4)), "ab");
    EXPECT_EQ(Ferrow::LPSTRToVBString("abc"), "");
}

}  // namespace
}  // namespace orvo
