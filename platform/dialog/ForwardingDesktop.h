// A desktop that passes everything on; the base of those that add something on the way.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Desktop.h"

namespace orvo::dialog {

class ForwardingDesktop : public IDesktop {
  public:
    explicit ForwardingDesktop(std::shared_ptr<IDesktop> shown) : shown_(std::move(shown)) {}

    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override {
        return shown_->MessageBox(text, title, icon, buttons);
    }
    void ShowModal(IDialogEvents& events) override { shown_->ShowModal(events); }
    void Beep() override { shown_->Beep(); }
    void ResetPointer() override { shown_->ResetPointer(); }
    Box Screen() override { return shown_->Screen(); }
    void Print(const std::vector<std::string>& lines) override { shown_->Print(lines); }
    void CopyToClipboard(const std::string& text) override { shown_->CopyToClipboard(text); }
    void Open(const std::string& address) override { shown_->Open(address); }

  private:
    std::shared_ptr<IDesktop> shown_;
};

}  // namespace orvo::dialog
