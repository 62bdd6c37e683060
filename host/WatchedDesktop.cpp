#include "host/WatchedDesktop.h"

#include <utility>

#include "host/ErrorLog.h"

namespace orvo::host {
namespace {
constexpr Integer kLeave = 2;
}  // namespace

WatchedDesktop::WatchedDesktop(std::shared_ptr<IDesktop> shown, Watch watch)
    : shown_(std::move(shown)), watch_(std::move(watch)) {}

MessageAnswer WatchedDesktop::MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                                         MessageButtons buttons) {
    ++messagesShown_;
    watch_.makeRoom();
    return shown_->MessageBox(WithSystemPaths(text), title, icon, buttons);
}

void WatchedDesktop::ShowModal(IDialogEvents& dialog) {
    if (watch_.interrupted()) return dialog.cmdContinue_Click(kLeave);
    ++failuresShown_;
    watch_.makeRoom();
    watch_.onFailure(dialog.Controls().At("lblError", 0).Caption());
    shown_->ShowModal(dialog);
}

void WatchedDesktop::Beep() {
    if (!watch_.interrupted()) shown_->Beep();
}

void WatchedDesktop::ResetPointer() {
    if (!watch_.interrupted()) shown_->ResetPointer();
}

Box WatchedDesktop::Screen() {
    return watch_.interrupted() ? Box{} : shown_->Screen();
}

}  // namespace orvo::host
