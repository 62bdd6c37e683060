// The window module's entry.
#include "platform/qt/Module.h"

#include <exception>

#include "platform/qt/Application.h"
#include "platform/qt/Desktop.h"

extern "C" __attribute__((visibility("default"))) orvo::qt::ModuleEntry orvo_window_desktop_1;

extern "C" void orvo_window_desktop_1(const orvo::WindowOptions& options, const std::string& helper,
                                      const std::function<std::string()>& displayTrouble,
                                      std::shared_ptr<orvo::IDesktop>& desktop, std::string& whyNot) {
    try {
        if (orvo::qt::EnsureApplication(displayTrouble, whyNot))
            desktop = std::make_shared<orvo::qt::Desktop>(options, helper);
    } catch (const std::exception& failure) {
        whyNot = failure.what();
    }
}
