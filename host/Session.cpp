#include "host/Session.h"

#include <unistd.h>

#include <iostream>
#include <utility>

#include "host/ErrorLog.h"
#include "host/Interrupt.h"
#include "platform/linux/Platform.h"
#include "platform/linux/WindowModule.h"
#include "platform/posix/ProcessRunner.h"
#include "support/Strings.h"
#include "tiling/Errors.h"

namespace orvo::host {
namespace {

constexpr const char* kProgram = "orvo-tile";

bool HasTerminal() {
    return isatty(STDIN_FILENO) != 0 || isatty(STDERR_FILENO) != 0;
}

std::shared_ptr<IDesktop> TerminalDesktop(console::Policy policy) {
    console::DesktopOptions shown = console::TerminalOptions(std::make_shared<posix::ProcessRunner>());
    shown.policy = policy;
    shown.program = kProgram;
    shown.log = ErrorLogPath;
    shown.interrupted = Interrupted;
    return std::make_shared<console::Desktop>(std::move(shown));
}

WindowOptions WindowSettings() {
    WindowOptions options;
    options.applicationName = kProgram;
    options.language = [] { return LangOffset(); };
    options.interrupted = Interrupted;
    return options;
}

/// Where failures are shown. A policy needs no window; a window that is not demanded is opened when something
/// is to be shown, and replaced by the terminal where that is not possible.
std::shared_ptr<IDesktop> ChooseDesktop(const FailureHandling& handling) {
    const bool ask = handling.policy == console::Policy::Ask;
    if (ask && handling.place == DialogPlace::Window) {
        std::string whyNot;
        if (auto window = linux_platform::LoadWindowDesktop(WindowSettings(), whyNot)) return window;
        throw UsageError("--dialog window: " + whyNot);
    }
    auto terminal = TerminalDesktop(handling.policy);
    if (!ask || handling.place == DialogPlace::Terminal || HasTerminal() || !linux_platform::DisplayNamed())
        return terminal;
    return linux_platform::WindowOnDemand(
        WindowSettings(), std::move(terminal),
        [](const std::string& whyNot) { std::cerr << kProgram << ": no window: " << whyNot << '\n'; });
}

}  // namespace

std::shared_ptr<WatchedDesktop> InstallPlatform(const FailureHandling& handling, ProgressDisplay& progress,
                                                std::function<void(const std::string&)> onFailure,
                                                utility::Settings services) {
    auto desktop = std::make_shared<WatchedDesktop>(
        ChooseDesktop(handling),
        WatchedDesktop::Watch{[&progress] { progress.MakeRoom(); }, std::move(onFailure), Interrupted});
    linux_platform::Options options;
    options.desktop = desktop;
    options.services = std::move(services);
    options.services.interrupted = Interrupted;
    platform::Platform made = linux_platform::MakePlatform(std::move(options));
    TellOfLog(made);
    platform::Install(std::move(made));
    return desktop;
}

}  // namespace orvo::host
