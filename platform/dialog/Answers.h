// How every desktop answers a dialog: its choices, who makes them, and what becomes of a failing handler.
#pragma once

#include "platform/Desktop.h"
#include "platform/FailureInFlight.h"

namespace orvo::dialog {

/// The index of a continue button.
enum Choice : Integer { kRetry = 0, kNextStatement = 1, kLeaveProcedure = 2 };

/// Who answers failures: the user, or "next statement" or "leave the procedure" for every one.
enum class Policy { Ask, Next, Leave };

/// What is chosen without asking.
inline Choice ChoiceOf(Policy policy) {
    return policy == Policy::Next ? kNextStatement : kLeaveProcedure;
}

/// Runs a handler of a dialog. Its failure is told, and ends that handler alone.
/// @param tell takes a RuntimeError
template <class Handler, class Tell>
void Guard(Handler&& handler, Tell&& tell) {
    try {
        handler();
    } catch (...) {
        tell(FailureInFlight());
    }
}

/// Answers a dialog that nobody sees: it is prepared as for showing, and whatever that comes to, the choice
/// is made.
template <class Tell>
void AnswerUnseen(IDialogEvents& events, Choice choice, Tell&& tell) {
    Guard([&] { events.Form_Activate(); }, tell);
    events.cmdContinue_Click(choice);
}

}  // namespace orvo::dialog
