// The procedure protocol under all three answers, and the call-stack list.
#include <new>
#include <stdexcept>
#include <utility>

#include "errorreport/Version.h"
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

using testing::ElementsAre;

constexpr ProcedureText kOuter{"[mod] Public Sub Outer()", "mod", "Outer"};
constexpr ProcedureText kInner{"[mod] Private Function Inner() As Long", "mod", "Inner"};

[[noreturn]] Long Fail() {
    throw RuntimeError(Fault::Overflow);
}

class ProtocolTest : public ComponentTest {
  protected:
    template <class Body>
    static void Outer(const Body& body) {
        Procedure<void>(kOuter).Run(body);
    }
};

TEST_F(ProtocolTest, RetryRunsTheStatementAgainFromItsStartUntilItWorks) {
    AlwaysAnswer(kRetry);
    std::string log;
    Outer([&](Statements& run) {
        run([&] { log += "a"; });
        run([&] {
            log += "b";
            if (log.size() < 5) Fail();
            log += "!";
        });
        run([&] { log += "c"; });
    });
    EXPECT_EQ(log, "abbbb!c");
    EXPECT_EQ(world->failures.size(), 3U);
    EXPECT_EQ(Trace().Count(), 1U) << "a retry is no new entry";
    EXPECT_EQ(world->beeps, 3);
}

TEST_F(ProtocolTest, SkippingKeepsTheTargetLeavingGivesTheResultSoFarAndTheCallerGoesOn) {
    for (const auto& [answer, result] : std::vector<std::pair<Integer, Long>>{
             {kNext, 8}, {kLeave, 5}, {Integer{3}, 5}, {Integer{-1}, 5}, {Integer{99}, 5}}) {
        AlwaysAnswer(answer);
        world->failures.clear();
        Long value = 7;
        Long got = -1;
        bool after = false;
        Outer([&](Statements& outer) {
            outer([&] {
                got = Procedure<Long>(kInner).Run([&](Statements& run, Long& r) {
                    run([&] { r = 5; });
                    run([&] { value = Fail(); });
                    run([&] { r = value + 1; });
                });
            });
            outer([&] { after = true; });
        });
        EXPECT_EQ(got, result) << answer;
        EXPECT_EQ(value, 7);
        EXPECT_TRUE(after);
        ASSERT_EQ(world->failures.size(), 1U);
        EXPECT_EQ(ShownLabel(0), "Inner");
        const Long unassigned = Procedure<Long>(kInner).Run([](Statements& run, Long&) { run(Fail); });
        EXPECT_EQ(unassigned, 0);
    }
}

TEST_F(ProtocolTest, SkippedConditionEntersItsBlockAndSkippedLoopTestRunsTheBody) {
    AlwaysAnswer(kNext);
    bool entered = false;
    int rounds = 0;
    Outer([&](Statements& run) {
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

TEST_F(ProtocolTest, LoopReadsItsLimitOnceCountsPastItAndIsRetriedLeftOrRunOnceWhereTheLimitFails) {
    struct Case {
        std::vector<Integer> answers;
        int failing;  ///< how often the limit fails
        Long first, limit;
        const char* bodies;
        Long counter;  ///< afterwards
        std::string failures;
    };
    const std::string overflow = "6 (Overflow)";
    for (const Case& c :
         std::vector<Case>{{{}, 0, 2, 4, "234", 5, ""},
                           {{}, 0, 3, 2, "", 3, ""},  // an empty range still sets the counter
                           {{kRetry}, 1, 0, 1, "01", 2, overflow},
                           {{kLeave}, 9, 0, 1, "", 42, overflow},
                           {{kNext, kNext}, 9, 0, 1, "*", 42, overflow + "92 (For loop not initialized)"}}) {
        SCOPED_TRACE(c.bodies);
        world->failures.clear();
        Answer(c.answers);
        Long i = 42;
        int reads = 0;
        std::string bodies;
        const auto limit = [&] { return reads++ < c.failing ? Fail() : c.limit; };
        const auto body = [&] { bodies += i == 42 ? "*" : std::to_string(i); };
        Outer([&](Statements& run) { run.For(i, c.first, limit, [&] { run(body); }); });
        EXPECT_EQ(bodies, c.bodies);
        EXPECT_EQ(i, c.counter);
        EXPECT_LE(reads, 1 + c.failing);
        std::string failures;
        for (std::size_t n = 0; n < world->failures.size(); ++n) failures += ShownError(n);
        EXPECT_EQ(failures, c.failures);
    }
}

TEST_F(ProtocolTest, EarlyExitAndLeavingReleaseLocalsAndAskNobody) {
    auto local = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = local;
    Procedure<void>(kOuter).Run([held = std::move(local)](Statements& run) mutable {
        const auto own = std::move(held);
        run(Fail);
    });
    EXPECT_TRUE(watch.expired());
    world->failures.clear();
    Outer([&](Statements& run) {
        if (run.Test([] { return true; })) return;
        run(Fail);
    });
    EXPECT_TRUE(world->failures.empty());
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

TEST_F(ProtocolTest, FailureInsideTheHandlerOrOnEntryReachesTheCallersOwnHandler) {
    auto owned = std::make_unique<BrokenDialog>();
    BrokenDialog& dialog = *owned;
    SetErrorDialog(std::move(owned));
    dialog.handlerFailures = 1;
    std::string log;
    Outer([&](Statements& run) {
        run([&] {
            Procedure<void>(kInner).Run([&](Statements& inner) {
                inner(Fail);
                inner([&] { log += "inner "; });
            });
        });
        run([&] { log += "outer "; });
    });
    EXPECT_EQ(log, "outer ");
    EXPECT_THAT(dialog.handled, ElementsAre("Inner:Overflow", "Outer:log not writable"));
    EXPECT_EQ(CurrentFailure().number, 0) << "no failure is pending afterwards";

    dialog.handlerFailures = 1;
    EXPECT_THROW(Outer([](Statements& run) { run(Fail); }), RuntimeError)
        << "without a caller of its own kind it is the host's failed call";

    dialog.handled.clear();
    dialog.entryFails = true;
    const auto body = [&](Statements& run) { run([&] { log += "entered"; }); };
    EXPECT_THROW(Outer(body), RuntimeError);
    EXPECT_TRUE(dialog.handled.empty());
    EXPECT_NO_THROW(Procedure<void>(kOuter, Armed::BeforeEntry).Run(body));
    EXPECT_EQ(log, "outer entered") << "only where the handler is armed before";
    EXPECT_THAT(dialog.handled, ElementsAre("Outer:entry"));
}

TEST_F(ProtocolTest, EveryExceptionBecomesANumberedFailure) {
    AlwaysAnswer(kNext);
    int failingLine = 0;
    Outer([&](Statements& run) {
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
    Outer([](Statements&) {});
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
    const auto enter = [] { Outer([](Statements& run) { run([] {}); }); };
    for (int i = 0; i < 25; ++i) enter();
    const long before = AllocationCount();
    for (int i = 0; i < 100; ++i) enter();
    EXPECT_EQ(AllocationCount(), before);
}

TEST_F(ProtocolTest, DialogShowsTheFailureInTheLanguageOfTheDayAndKeepsTheLastChoice) {
    const auto failOnce = [] {
        bool again = true;
        Outer([&](Statements& run) {
            run([&] {
                if (std::exchange(again, false)) throw RuntimeError(Fault::ObjectNotSet);
            });
        });
    };
    LangOffset() = 10000;
    const auto closeWithoutChoice = [](const FailureView&) { return std::nullopt; };
    world->answer = closeWithoutChoice;
    failOnce();
    ASSERT_EQ(world->failures.size(), 1U) << "nothing was ever clicked: that is a retry";
    const FailureView& view = world->failures[0];
    EXPECT_EQ(view.title, "WARNING! an error has occured ...");
    EXPECT_EQ(view.rows[0].caption, "Error description:");
    EXPECT_EQ(view.rows[0].text, "91 (Object variable or With block variable not set)");
    EXPECT_EQ(view.callStackCaption, "CallStack:");
    EXPECT_EQ(view.choices[2], "&Exit Procedure");
    EXPECT_EQ(view.programInfo, std::string("Orvo_Tile  V") + std::to_string(kVersionMajor) + "." +
                                    std::to_string(kVersionMinor) + "." + std::to_string(kVersionRevision));
    EXPECT_THAT(view.callStack, ElementsAre("14:25:07 [mod] Public Sub Outer()"));
    dynamic_cast<Ferrow&>(GlobalErrorDialog()).SetProgInfo("My host 2");
    Answer({kNext});
    failOnce();
    world->answer = closeWithoutChoice;
    failOnce();
    EXPECT_EQ(world->failures.size(), 3U);
    EXPECT_EQ(world->failures[2].programInfo, "My host 2");
    EXPECT_EQ(Ferrow::LPSTRToVBString(std::string("ab\0c", 4)), "ab");
    EXPECT_EQ(Ferrow::LPSTRToVBString("abc"), "");
}

}  // namespace
}  // namespace orvo
