#include "host/Session.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <utility>

#include "host/ErrorLog.h"
#include "host/Interrupt.h"
#include "host/SessionDesktop.h"
#include "platform/linux/Platform.h"
#include "platform/linux/WindowModule.h"
#include "platform/posix/ProcessRunner.h"
#include "support/Strings.h"
#include "support/Text.h"
#include "tiling/Errors.h"

namespace orvo::host {
namespace {

constexpr const char* kProgram = "orvo-tile";

bool HasTerminal() {
    return isatty(STDIN_FILENO) != 0 || isatty(STDERR_FILENO) != 0;
}

ProgressMode ModeOf(const SessionOptions& options) {
    if (options.progress != ProgressMode::Auto) return options.progress;
    return !options.quiet && isatty(STDERR_FILENO) != 0 ? ProgressMode::Bar : ProgressMode::None;
}

/// The language that the locale shows texts in.
Language LanguageOfLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || *value == '\0') continue;
        const std::string language = std::string(value).substr(0, 2);
        return language == "de" ? Language::German : language == "fr" ? Language::French : Language::English;
    }
    return Language::English;
}

std::shared_ptr<IDesktop> TerminalDesktop(dialog::Policy policy) {
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
std::shared_ptr<IDesktop> ChooseDesktop(const SessionOptions& options) {
    const bool ask = options.policy == dialog::Policy::Ask;
    if (ask && options.place == DialogPlace::Window) {
        std::string whyNot;
        if (auto window = linux_platform::LoadWindowDesktop(WindowSettings(), whyNot)) return window;
        throw tiling::UsageError("--dialog window: " + whyNot);
    }
    auto terminal = TerminalDesktop(options.policy);
    if (!ask || options.place == DialogPlace::Terminal || HasTerminal() || !linux_platform::DisplayNamed())
        return terminal;
    return linux_platform::WindowOnDemand(WindowSettings(), std::move(terminal),
                                          [](const std::string& whyNot) { Say("no window: " + whyNot); });
}

}  // namespace

Session::Session(const SessionOptions& options)
    : quiet_(options.quiet), progress_(std::cerr, ModeOf(options)) {
    linux_platform::Options made;
    made.desktop = std::make_shared<SessionDesktop>(ChooseDesktop(options), [this] { progress_.MakeRoom(); });
    made.services.languageOffset =
        static_cast<Integer>(options.language == Language::Locale ? LanguageOfLocale() : options.language);
    made.services.interrupted = Interrupted;
    platform::Platform platform = linux_platform::MakePlatform(std::move(made));
    TellOfLog(platform);
    platform::Install(std::move(platform));
}

tiling::Callbacks Session::Callbacks() {
    tiling::Callbacks callbacks;
    callbacks.interrupted = Interrupted;
    callbacks.progress = &progress_;
    if (!quiet_) callbacks.notice = Say;
    return callbacks;
}

int Session::Finish(const tiling::Summary& summary) const {
    for (const std::string& line : summary.Lines(quiet_)) Say(line);
    std::cerr << std::flush;
    Print(summary.AsJson(), "the summary");
    switch (summary.Result()) {
        case tiling::Outcome::Complete:
            return kExitDone;
        case tiling::Outcome::Interrupted:
            return kExitInterrupted;
        default:
            return kExitIncomplete;
    }
}

void Say(const std::string& text) {
    std::cerr << kProgram << ": " << Printable(text, ' ') << '\n';
}

void Print(const std::string& text, const std::string& what) {
    std::cout << text << std::flush;
    if (!std::cout) throw tiling::RunError(what + " could not be written to standard output");
}

}  // namespace orvo::host
