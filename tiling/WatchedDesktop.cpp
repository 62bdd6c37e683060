#include "tiling/WatchedDesktop.h"

#include "platform/dialog/Answers.h"

namespace orvo::tiling {
MessageAnswer WatchedDesktop::MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                                         MessageButtons buttons) {
    ++messagesShown_;
    return ForwardingDesktop::MessageBox(text, title, icon, buttons);
}

void WatchedDesktop::ShowModal(IDialogEvents& events) {
    if (watch_.interrupted()) return events.cmdContinue_Click(dialog::kLeaveProcedure);
    ++failuresShown_;
    watch_.onFailure(events.Controls().At("lblError", 0).Caption());
    ForwardingDesktop::ShowModal(events);
}

void WatchedDesktop::Beep() {
    if (!watch_.interrupted()) ForwardingDesktop::Beep();
}

void WatchedDesktop::ResetPointer() {
    if (!watch_.interrupted()) ForwardingDesktop::ResetPointer();
}

Box WatchedDesktop::Screen() {
    return watch_.interrupted() ? Box{} : ForwardingDesktop::Screen();
}

}  // namespace orvo::tiling
