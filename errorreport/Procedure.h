// The procedure protocol: entry is recorded, a failing statement is retried, skipped or left as the user
// says.
//
//     constexpr ProcedureText kTile{"[clsTileImage] Public Function ...", "clsTileImage", "Tile"};
//
//     void clsTileImage::Tile() {
//         Procedure<void>(kTile).Run([&](Statements& run) { run([&] { tiles_ = 1; }); });
//     }
#pragma once

#include <string_view>
#include <type_traits>
#include <utility>

#include "errorreport/ErrorDialog.h"

namespace orvo {

/// How a procedure names itself: its descriptor for the call-stack list, module and label for the dialog.
struct ProcedureText {
    std::string_view descriptor;
    std::string_view module;
    std::string_view label;
};

/// Runs the statements of one activation of a procedure. Statements do not nest: a block is not a statement.
///
/// The line shown for a failure is the line of the call; the builtin serves where a compiler of the supported
/// set lacks std::source_location.
class Statements {
  public:
    explicit Statements(const ProcedureText& text) : text_(text) {}
    Statements(const Statements&) = delete;
    Statements& operator=(const Statements&) = delete;

    /// Records the procedure's entry. A failure here reaches the procedure's caller.
    void Enter() const;

    /// One statement. It should compute first and assign last, so that a failure leaves its target as it was.
    template <class Statement>
    void operator()(Statement&& statement, int line = __builtin_LINE()) {
        for (;;) {
            try {
                statement();
                return;
            } catch (...) {
                if (!RunAgain(line)) return;
            }
        }
    }

    /// The condition of an If or While. A failing condition that is skipped enters its block, which is the
    /// statement that follows.
    template <class Condition>
    bool Test(Condition&& condition, int line = __builtin_LINE()) {
        bool holds = true;
        (*this)(
            [&] {
                holds = true;
                holds = condition();
            },
            line);
        return holds;
    }

    /// A counted loop; `limit` is read once. If reading it fails and is skipped, the body runs once with the
    /// counter as it stands, and then the loop's end fails, for the loop was never set up. A body that
    /// returns false leaves the loop at once, the counter as it stands.
    template <class Limit, class Body>
    void For(Long& counter, Long first, Limit&& limit, Body&& body, int line = __builtin_LINE()) {
        bool ready = false;
        Long last = 0;
        (*this)(
            [&] {
                last = limit();
                counter = first;
                ready = true;
            },
            line);
        if (ready && counter > last) return;
        bool again = true;
        while (again) {
            if constexpr (std::is_same_v<std::invoke_result_t<Body&>, bool>) {
                if (!body()) return;
            } else {
                body();
            }
            again = false;
            (*this)(
                [&] {
                    CountUp(ready, counter);
                    again = counter <= last;
                },
                line);
        }
    }

  private:
    /// Called while a failure is being handled: asks the dialog. True to run the statement again, false to go
    /// on with the next one; leaves the procedure by an exception otherwise.
    bool RunAgain(int line);
    static void CountUp(bool ready, Long& counter);

    const ProcedureText& text_;
    bool leaving_ = false;
};

/// Thrown by Statements to leave the activation's body; never leaves Procedure::Run.
struct LeaveProcedure {};

/// When a procedure arms its handler: normally once its entry is recorded.
enum class Armed { AfterEntry, BeforeEntry };

template <class Result>
class Procedure {
  public:
    explicit Procedure(const ProcedureText& text, Armed armed = Armed::AfterEntry)
        : text_(text), armed_(armed) {}

    /// Runs `body(statements, result)`, for a Sub `body(statements)`, and returns the result as it stands at
    /// the end, also where the user leaves the procedure.
    template <class Body>
    Result Run(Body&& body) const {
        Statements run(text_);
        if (armed_ == Armed::AfterEntry) run.Enter();
        if constexpr (std::is_void_v<Result>) {
            Guard(run, [&] { body(run); });
        } else {
            Result result{};
            Guard(run, [&] { body(run, result); });
            return result;
        }
    }

  private:
    template <class Body>
    void Guard(Statements& run, Body&& body) const {
        try {
            if (armed_ == Armed::BeforeEntry) run([&] { run.Enter(); }, 0);
            body();
        } catch (const LeaveProcedure&) {
            // The result stands as it is.
        }
    }

    const ProcedureText& text_;
    Armed armed_;
};

}  // namespace orvo
