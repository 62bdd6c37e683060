#include "tiling/WatchedDesktop.h"

namespace orvo::tiling {
namespace {
constexpr Integer kLeave = 2;
}  // namespace

MessageAnswer WatchedDesktop::MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                                         MessageButtons buttons) {
    ++messagesShown_;
    return ForwardingDesktop::MessageBox(text, title, icon, buttons);
}

void WatchedDesktop::ShowModal(IDialogEvents& dialog) {
    if (watch_.interrupted()) return dialog.cmdContinue_Click(kLeave);
    ++failuresShown_;
    watch_.onFailure(dialog.Controls().At("lblError", 0).Caption());
    ForwardingDesktop::ShowModal(dialog);
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
