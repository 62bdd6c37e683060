// The desktop of the command line, whatever shows it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "host/ErrorLog.h"
#include "platform/dialog/ForwardingDesktop.h"

namespace orvo::host {

/// Before something is shown, a progress bar makes room; paths in messages are the system's.
class SessionDesktop final : public dialog::ForwardingDesktop {
  public:
    SessionDesktop(std::shared_ptr<IDesktop> shown, std::function<void()> makeRoom)
        : ForwardingDesktop(std::move(shown)), makeRoom_(std::move(makeRoom)) {}

    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override {
        makeRoom_();
        return ForwardingDesktop::MessageBox(WithSystemPaths(text), title, icon, buttons);
    }
    void ShowModal(IDialogEvents& events) override {
        makeRoom_();
        ForwardingDesktop::ShowModal(events);
    }

  private:
    std::function<void()> makeRoom_;
};

}  // namespace orvo::host
