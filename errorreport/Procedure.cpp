#include "errorreport/Procedure.h"

#include <limits>
#include <string>

#include "platform/FailureInFlight.h"

namespace orvo {
namespace {

std::unique_ptr<IErrorDialog>& DialogSlot() {
    // Never destroyed: objects with static lifetime may still enter procedures while the process ends.
    static auto* slot = new std::unique_ptr<IErrorDialog>;
    return *slot;
}

Failure& FailureSlot() {
    static auto* slot = new Failure;
    return *slot;
}

/// The failure that is being handled, as number and text.
Failure Describe(int line) {
    const RuntimeError failure = FailureInFlight();
    return {failure.Number(), failure.Description(), line};
}

/// Holds the current failure while its handler runs.
class FailureScope {
  public:
    explicit FailureScope(int line) : outer_(std::move(FailureSlot())) { FailureSlot() = Describe(line); }
    ~FailureScope() { FailureSlot() = std::move(outer_); }
    FailureScope(const FailureScope&) = delete;
    FailureScope& operator=(const FailureScope&) = delete;

  private:
    Failure outer_;
};

}  // namespace

IErrorDialog& GlobalErrorDialog() {
    auto& dialog = DialogSlot();
    if (!dialog) dialog = MakeErrorDialog();
    return *dialog;
}

void SetErrorDialog(std::unique_ptr<IErrorDialog> dialog) {
    DialogSlot() = std::move(dialog);
}

const Failure& CurrentFailure() {
    return FailureSlot();
}

void Statements::Enter() const {
    // One scratch text for all entries, never destroyed: the dialog changes it in place, its memory is used
    // again.
    static auto* entry = new std::string;
    entry->assign(text_.descriptor);
    GlobalErrorDialog().CallStack(*entry);
}

bool Statements::RunAgain(int line) {
    // A failure inside the handler, or the leaving itself, passes through: it is not ours to handle.
    if (leaving_) throw;
    leaving_ = true;
    FailureScope failure(line);
    const auto choice = static_cast<ContinueChoice>(
        GlobalErrorDialog().OnError(std::string(text_.module), std::string(text_.label)));
    if (choice != ContinueChoice::Retry && choice != ContinueChoice::ResumeNext) throw LeaveProcedure{};
    leaving_ = false;
    return choice == ContinueChoice::Retry;
}

void Statements::CountUp(bool ready, Long& counter) {
    if (!ready) throw RuntimeError(Fault::ForLoopNotInitialized);
    if (counter == std::numeric_limits<Long>::max()) throw RuntimeError(Fault::Overflow);
    ++counter;
}

}  // namespace orvo
