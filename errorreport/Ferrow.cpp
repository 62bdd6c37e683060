#include "errorreport/Ferrow.h"

#include <utility>

#include "errorreport/Version.h"
#include "platform/Platform.h"
#include "support/Text.h"

namespace orvo {
namespace {

/// The controls with texts of their own, in the dialog's control order.
enum ControlIndex : std::size_t {
    kRow0,
    kRow1,
    kRow2,
    kRow3,
    kCallStack,
    kContinue,
    kChoice0,
    kChoice1,
    kChoice2
};

Control Localized(const char* kind, const char* caption, const char* tag) {
    return {kind, {{"Caption", caption}, {"Tag", tag}, {"ToolTipText", ""}}};
}

/// Design captions, shown until the dialog is activated for the first time.
Form DesignedForm() {
    Form form;
    form.self = {"Form", {{"Caption", "ACHTUNG ! Ein Fehler ist aufgetreten ..."}, {"Tag", "8012"}}};
    form.controls = {
        Localized("Label", "Fehler-Nr:", "8014"),
        Localized("Label", "Modul:", "8016"),
        Localized("Label", "Prozedur:", "8017"),
        Localized("Label", "Zeilen-Nr.:", "8018"),
        Localized("Frame", "CallStack:", ""),
        Localized("Frame", "Weiterer Programmablauf...", "8023"),
        Localized("CommandButton", "Befehl wieder&holen", "8024"),
        Localized("CommandButton", "Fortsetzen mit &nächsten Befehl", "8025"),
        Localized("CommandButton", "&Prozedur verlassen", "8026"),
    };
    return form;
}

std::string ProgramInfo() {
    return std::string(kComponentName) + "  V" + std::to_string(kVersionMajor) + "." +
           std::to_string(kVersionMinor) + "." + std::to_string(kVersionRevision);
}

}  // namespace

std::unique_ptr<IErrorDialog> MakeErrorDialog() {
    return std::make_unique<Ferrow>();
}

Ferrow::Ferrow() : form_(DesignedForm()) {}

void Ferrow::CallStack(std::string& a) {
    IClock& clock = Object(platform::Current().clock);
    const std::int64_t now = clock.Seconds();
    if (now != second_ || timeText_.empty()) {
        timeText_ = ClockText(clock.Local(now)) + " ";
        second_ = now;
    }
    a.insert(0, timeText_);
    callStack_.PushFront(a);
}

Integer Ferrow::OnError(const std::string& AktModul, const std::string& AktProc) {
    const Failure& failure = CurrentFailure();
    lblError_[0] = std::to_string(failure.number) + " (" + failure.description + ")";
    lblError_[1] = AktModul;
    lblError_[2] = AktProc;
    lblError_[3] = std::to_string(failure.line);
    if (lblProgInfo_.empty()) lblProgInfo_ = ProgramInfo();
    IDesktop& desktop = Object(platform::Current().desktop);
    desktop.ResetPointer();
    desktop.Beep();
    desktop.ShowModal(*this);
    return intChoice_;
}

void Ferrow::SetProgInfo(const std::string& Text) {
    lblProgInfo_ = Text;
}

std::string Ferrow::LPSTRToVBString(const std::string& s) {
    const auto end = s.find('\0');
    return end == std::string::npos ? std::string() : s.substr(0, end);
}

void Ferrow::cmdContinue_Click(Integer index) {
    intChoice_ = index;
}

FailureView Ferrow::Form_Activate() {
    LoadResStrings(form_);
    return View();
}

FailureView Ferrow::View() const {
    FailureView view;
    view.title = form_.self.Get("Caption");
    for (std::size_t i = 0; i < lblError_.size(); ++i)
        view.rows.push_back({Caption(kRow0 + i), lblError_[i]});
    view.programInfo = lblProgInfo_;
    view.callStackCaption = Caption(kCallStack);
    view.callStack = callStack_.Entries();
    view.continueCaption = Caption(kContinue);
    view.choices = {Caption(kChoice0), Caption(kChoice1), Caption(kChoice2)};
    return view;
}

const std::string& Ferrow::Caption(std::size_t control) const {
    return form_.controls[control].Get("Caption");
}

}  // namespace orvo
