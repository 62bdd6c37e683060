#include "errorreport/Ferrow.h"

#include <utility>

#include "errorreport/FerrowForm.h"
#include "errorreport/Report.h"
#include "errorreport/Version.h"
#include "platform/Platform.h"
#include "support/Arithmetic.h"
#include "support/Form.h"
#include "support/Strings.h"
#include "support/Text.h"

namespace orvo {
namespace {

std::string ProgramInfo() {
    return std::string(kComponentName) + "  V" + std::to_string(kVersionMajor) + "." +
           std::to_string(kVersionMinor) + "." + std::to_string(kVersionRevision);
}

}  // namespace

std::unique_ptr<IErrorDialog> MakeErrorDialog() {
    return std::make_unique<Ferrow>();
}

Ferrow::Ferrow() : form_(DesignFerrow()) {}

Integer Ferrow::OnError(const std::string& AktModul, const std::string& AktProc) {
    const Failure& failure = CurrentFailure();
    SetCaption("lblError", 0, std::to_string(failure.number) + " (" + failure.description + ")");
    SetCaption("lblError", 1, AktModul);
    SetCaption("lblError", 2, AktProc);
    SetCaption("lblError", 3, std::to_string(failure.line));
    if (form_.At("lblProgInfo").Caption().empty()) SetCaption("lblProgInfo", -1, ProgramInfo());
    Desktop().ResetPointer();
    ArrangeFrames();
    AppendReportLog();
    Desktop().Beep();
    ShowModal();
    return intChoice_;
}

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

void Ferrow::SetProgInfo(const std::string& Text) {
    SetCaption("lblProgInfo", -1, Text);
}

std::string Ferrow::LPSTRToVBString(const std::string& s) {
    const auto end = s.find('\0');
    return end == std::string::npos ? std::string() : s.substr(0, end);
}

void Ferrow::ArrangeFrames() {
    // The contact texts are filled when the window is activated: the first notice still lacks them.
    strComment_ = Text(8001) + " " + strCompany_ + " " + Text(8002) + strFax_ + Text(8003);
    Long y = 0;
    const auto place = [&](const char* name) {
        Control& frame = form_.At(name);
        frame.visible = true;
        frame.box.left = 0;
        frame.box.top = y;
        y += frame.box.height;
    };
    place("framComment");
    SetCaption("lblComment", -1, strComment_);
    place("framFehler");
    place("framProgInfo");
    place("framProtocol");
    for (Integer i = 0; i < 4; ++i) form_.At("cmdProtocol", i).visible = true;
    place("framCallStack");
    place("framContinue");
    for (Integer i = 0; i < 4; ++i) form_.At("cmdContinue", i).visible = i < 3;

    Box& window = form_.self.box;
    const Long width = form_.At("framFehler").box.width;
    window.width += width - std::exchange(form_.scaleWidth, width);
    window.height += y - std::exchange(form_.scaleHeight, y);
    const Box screen = Desktop().Screen();
    window.left = ToLong((screen.width - window.width) / 2.0);
    window.top = ToLong((screen.height - window.height) / 2.0);
}

void Ferrow::ShowModal() {
    if (form_.self.visible) throw RuntimeError(Fault::FormAlreadyDisplayed);
    bool& visible = form_.self.visible;
    visible = true;
    try {
        Desktop().ShowModal(*this);
    } catch (...) {
        visible = false;
        throw;
    }
    visible = false;
}

void Ferrow::Form_Activate() {
    strMail_ = Text(9106);
    strWeb_ = Text(9108);
    strCompany_ = Text(1);
    strFax_ = Text(9107);
    LoadResStrings(form_);
    ShowCallStack();
}

void Ferrow::cmdContinue_Click(Integer index) {
    intChoice_ = index;
    form_.self.visible = false;
}

IDesktop& Ferrow::Desktop() {
    return Object(platform::Current().desktop);
}

void Ferrow::ShowCallStack() {
    form_.At("lstCallStack").list = callStack_.Entries();
}

void Ferrow::SetCaption(const char* name, Integer index, std::string text) {
    form_.At(name, index).Set("Caption", std::move(text));
}

}  // namespace orvo
