// The procedure protocol under all three answers, and the call-stack list.
#include <new>
#include <stdexcept>

#include "errorreport/Version.h"
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

constexpr ProcedureText kOuter{"[mod] Public Sub Outer()", "mod", "Outer"};
constexpr ProcedureText kInner{"[mod] Private Function Inner() As Long", "mod", "Inner"};

[[noreturn]] Long Fail() {
    throw RuntimeError(Fault::Overflow);
}

struct ProtocolTest : ComponentTest {
    template <class Body>
    static void Outer(const Body& body) {
        Procedure<void>(kOuter).Run(body);
    }
};

TEST_F(ProtocolTest, FailingStatementIsRunAgainFromItsStartOrSkippedOrLeftAndTheCallerGoesOn) {
    using Answers = std::vector<Integer>;
    for (const auto& [answers, expectedLog, expected] :
         {std::tuple(Answers{kRetry, kRetry, kRetry}, "a----!c", 2),
          {{kNext}, "a-c", 8},  // the target of the statement stays
          {{kRetry, kLeave}, "a--c", 5},
          {{Integer{3}}, "a-c", 5},
          {{Integer{-1}}, "a-c", 5}}) {
        NewWorld();
        Answer(answers);
        std::string log;
        Long value = 7;
        Long result = -1;
        Outer([&](Statements& outer) {
            outer([&] { log += "a"; });
            outer([&] {
                result = Procedure<Long>(kInner).Run([&](Statements& run, Long& r) {
                    run([&] { r = 5; });
                    run([&] { value = (log += "-").size() < 5 ? Fail() : 1; });
                    run([&] { r = value + 1; });
                    if (value == 1) log += "!";
                });
            });
            outer([&] { log += "c"; });
        });
        EXPECT_EQ(log, expectedLog);
        EXPECT_EQ(result, expected) << log;
        EXPECT_EQ(world->failures.size(), answers.size());
        EXPECT_EQ(ShownLabel(0), "Inner");
        EXPECT_EQ(Trace().Count(), 2U) << "a retry is no new entry";
    }
}

TEST_F(ProtocolTest, LoopReadsItsLimitOnceCountsPastItAndIsRetriedLeftOrRunOnceWhereTheLimitFails) {
    for (const char* row :  // answers, first, limit and how often it fails; then the bodies, the counter and
                            // the failures
         {"|2|4|0|234|5|", "|3|2|0||3|", "0|0|1|1|01|2|6 Outer", "2|0|1|9||42|6 Outer",
          "11|0|1|9|42|42|6 Outer, 92 Outer"}) {
        const auto cells = Cells(row);
        const auto number = [&](std::size_t at) { return std::stoi(cells[at]); };
        std::vector<Integer> answers;
        for (const char digit : cells[0]) answers.push_back(static_cast<Integer>(digit - '0'));
        Answer(answers);
        Long i = 42;
        int reads = 0;
        std::string bodies;
        const auto limit = [&] { return reads++ < number(3) ? Fail() : number(2); };
        const auto body = [&] { bodies += std::to_string(i); };
        Outer([&](Statements& run) { run.For(i, number(1), limit, [&] { run(body); }); });
        EXPECT_EQ(bodies, cells[4]);
        EXPECT_EQ(i, number(5)) << row;
        EXPECT_LE(reads, 1 + number(3));
        EXPECT_EQ(Failures(), cells[6]);
    }
}

/// A dialog that fails where it is told to.
class BrokenDialog : public IErrorDialog {
  public:
    explicit BrokenDialog(int failing, bool entryFails = false)
        : handlerFailures_(failing), entryFails_(entryFails) {}
    void CallStack(std::string&) override {
        if (entryFails_) throw RuntimeError(1, "entry");
    }
    Integer OnError(const std::string&, const std::string& AktProc) override {
        handled += AktProc + ": " + CurrentFailure().description + "; ";
        if (handlerFailures_-- > 0) throw RuntimeError(2, "log not writable");
        return kNext;
    }
    static inline std::string handled;

  private:
    int handlerFailures_;  ///< how many calls of OnError fail before it answers
    bool entryFails_;
};

TEST_F(ProtocolTest, FailureInsideTheHandlerOrOnEntryReachesTheCallersOwnHandler) {
    std::string log;
    const auto body = [&](Statements& run) {
        run(Fail);
        run([&] { log += "inner "; });
    };
    SetErrorDialog(std::make_unique<BrokenDialog>(1));
    Outer([&](Statements& run) {
        run([&] { Procedure<void>(kInner).Run(body); });
        run([&] { log += "outer "; });
    });
    EXPECT_EQ(CurrentFailure().number, 0) << "no failure is pending afterwards";
    SetErrorDialog(std::make_unique<BrokenDialog>(1));
    EXPECT_EQ(NumberOf([&] { Outer(body); }), 2) << "the host's failed call";
    SetErrorDialog(std::make_unique<BrokenDialog>(0, true));
    EXPECT_EQ(NumberOf([&] { Outer(body); }), 1);
    EXPECT_NO_THROW(Procedure<void>(kOuter, Armed::BeforeEntry).Run(body));
    EXPECT_EQ(log, "outer inner ") << "only where the handler is armed before";
    EXPECT_EQ(BrokenDialog::handled,
              "Inner: Overflow; Outer: log not writable; Outer: Overflow; "
              "Outer: entry; Outer: Overflow; ");
}

TEST_F(ProtocolTest, EveryExceptionBecomesANumberedFailure) {
    AlwaysAnswer(kNext);
    int failingLine = 0;
    Outer([&](Statements& run) {
        run([] { throw RuntimeError(-2147220991, "platform text"); });
        run([] { throw std::bad_alloc(); });
        run([] { throw std::logic_error("odd"); });
        for (const auto fault :
             {Fault::InvalidProcedureCall, Fault::SubscriptOutOfRange, Fault::DivisionByZero,
              Fault::TypeMismatch, Fault::ObjectNotSet, Fault::ForLoopNotInitialized})
            run([&] { throw RuntimeError(fault); });
        failingLine = __LINE__ + 1;
        run([] { throw 1; });
    });
    std::string errors;
    for (const FailureView& shown : world->failures) errors += shown.rows[0].text + "\n";
    EXPECT_EQ(errors,
              "-2147220991 (platform text)\n7 (Out of memory)\n440 (odd)\n"
              "5 (Invalid procedure call or argument)\n9 (Subscript out of range)\n11 (Division by zero)\n"
              "13 (Type mismatch)\n91 (Object variable or With block variable not set)\n"
              "92 (For loop not initialized)\n440 (Automation error)\n");
    EXPECT_EQ(world->failures.back().rows[3].text, std::to_string(failingLine));
}

TEST_F(ProtocolTest, CallStackKeepsTheTwentyNewestWithTheirTimeOfEntry) {
    world->now = {2024, 3, 9, 4, 3, 2};
    Outer([](Statements&) {});
    world->now.hour = 23;
    for (int i = 0; i < 19; ++i) Procedure<void>(kInner).Run([](Statements&) {});
    EXPECT_EQ(Trace().At(19), "04:03:02 [mod] Public Sub Outer()");
    Procedure<void>(kInner).Run([](Statements&) {});
    const std::string inner = "23:03:02 [mod] Private Function Inner() As Long";
    EXPECT_EQ(Trace().Entries(), std::vector<std::string>(20, inner)) << "the first entry is gone";
}

TEST_F(ProtocolTest, DialogShowsTheFailureInTheLanguageOfTheDayAndKeepsTheLastChoice) {
    const auto failOnce = [] {
        bool again = true;
        const auto fail = [&] { return std::exchange(again, false) ? Fail() : 0; };
        Outer([&](Statements& run) { run(fail); });
    };
    const auto closeWithoutChoice = [](const FailureView&) { return std::nullopt; };
    LangOffset() = 10000;
    world->answer = closeWithoutChoice;
    failOnce();
    ASSERT_EQ(world->failures.size(), 1U) << "nothing was ever clicked: that is a retry";
    const FailureView view = world->failures[0];
    EXPECT_EQ(view.programInfo, std::string("Orvo_Tile  V") + std::to_string(kVersionMajor) + "." +
                                    std::to_string(kVersionMinor) + "." + std::to_string(kVersionRevision));
    Dialog().SetProgInfo("My host 2");
    Answer({kNext});
    failOnce();
    world->answer = closeWithoutChoice;
    failOnce();
    ASSERT_EQ(world->failures.size(), 3U);
    EXPECT_EQ(world->failures[2].programInfo, "My host 2");
    EXPECT_EQ(Ferrow::LPSTRToVBString(std::string("ab\0c", 4)) + Ferrow::LPSTRToVBString("abc"), "ab");
}

}  // namespace
}  // namespace orvo
