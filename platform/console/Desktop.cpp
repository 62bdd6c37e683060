#include "platform/console/Desktop.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <iostream>
#include <utility>

#include "platform/console/Words.h"
#include "support/Text.h"

namespace orvo::console {
namespace {

constexpr Integer kEndOfInput = -1;

bool IsOneOf(const std::string& answer, std::initializer_list<const char*> words) {
    return std::ranges::any_of(words, [&](const char* word) { return answer == word; });
}

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

DesktopOptions TerminalOptions(std::shared_ptr<IProcessRunner> runner) {
    DesktopOptions options;
    options.read = TerminalReader();
    options.runner = std::move(runner);
    options.clipboard = TerminalClipboard();
    options.display = !Variable("DISPLAY").empty() || !Variable("WAYLAND_DISPLAY").empty();
    options.browser = Variable("BROWSER");
    return options;
}

Desktop::Desktop(DesktopOptions options) : options_(std::move(options)) {
    if (options_.out == nullptr) options_.out = &std::cerr;
    if (options_.policy == Policy::Ask && !options_.read) options_.policy = Policy::Leave;
}

MessageAnswer Desktop::MessageBox(const std::string& text, const std::string& title, MessageIcon /*icon*/,
                                  MessageButtons buttons) {
    Out() << options_.program << ": " << title << (title.empty() ? "" : ": ") << Printable(text) << '\n';
    if (buttons == MessageButtons::OK) return MessageAnswer::OK;
    while (options_.read && !options_.interrupted()) {
        Out() << CurrentWords().yesNo << " > " << std::flush;
        const auto line = options_.read();
        if (!line) break;
        const std::string answer = LCase(Trim(*line, " \t\r"));
        if (IsOneOf(answer, {"y", "yes", "j", "ja", "o", "oui"})) return MessageAnswer::Yes;
        if (IsOneOf(answer, {"n", "no", "nein", "non"})) return MessageAnswer::No;
    }
    Out() << '\n';
    return MessageAnswer::No;
}

void Desktop::ShowModal(IDialogEvents& events) {
    const auto tell = [this](const RuntimeError& failure) { TellFailure(failure); };
    if (options_.interrupted()) return events.cmdContinue_Click(dialog::kLeaveProcedure);
    dialog::Guard([&] { events.Form_Activate(); }, tell);
    const FailureView view = ViewOf(events.Controls());
    const Menu menu(view);
    if (options_.policy != Policy::Ask) {
        const dialog::Choice choice = dialog::ChoiceOf(options_.policy);
        ShowBriefly(view, menu.Plain(static_cast<std::size_t>(choice)));
        return events.cmdContinue_Click(choice);
    }
    ShowWhole(view, menu);
    while (events.Controls().self.visible) {
        const Integer button = Ask(menu);
        if (button == kEndOfInput) return events.cmdContinue_Click(dialog::kLeaveProcedure);
        dialog::Guard([&] { Click(events, button); }, tell);
    }
}

void Desktop::Beep() {
    if (options_.policy == Policy::Ask && !options_.interrupted()) Out() << '\a' << std::flush;
}

void Desktop::Print(const std::vector<std::string>& lines) {
    if (!options_.runner) FailPrinting(CurrentWords().noCommands);
    PrintLines(*options_.runner, lines, options_.interrupted);
}

void Desktop::CopyToClipboard(const std::string& text) {
    const bool none = options_.clipboard == Clipboard::None;
    Out() << ClipboardSequence(text, options_.clipboard)
          << (none ? CurrentWords().notCopied : CurrentWords().copied) << options_.log() << '\n'
          << std::flush;
}

void Desktop::Open(const std::string& address) {
    if (options_.runner && options_.display) {
        Out() << CurrentWords().opening << address << '\n' << std::flush;
        if (OpenAddress(*options_.runner, address, options_.browser)) return;
    }
    Out() << CurrentWords().notOpened << address << '\n' << std::flush;
}

Integer Desktop::Ask(const Menu& menu) const {
    for (;;) {
        Out() << CurrentWords().prompt << " (1-" << menu.Count() << ") > " << std::flush;
        const auto line = options_.read();
        if (!line) {
            Out() << '\n';
            return kEndOfInput;
        }
        const std::vector<std::size_t> named = menu.Named(*line);
        if (named.size() == 1) return static_cast<Integer>(named.front());
        if (named.empty()) continue;
        Out() << CurrentWords().several;
        for (const std::size_t button : named) Out() << (button == named.front() ? "" : ", ") << button + 1;
        Out() << '\n';
    }
}

void Desktop::Click(IDialogEvents& events, Integer button) const {
    constexpr auto kChoices = static_cast<Integer>(Menu::kChoices);
    if (button < kChoices) {
        events.cmdContinue_Click(button);
    } else {
        events.cmdProtocol_Click(static_cast<Integer>(button - kChoices));
    }
}

void Desktop::ShowWhole(const FailureView& view, const Menu& menu) const {
    std::ostream& out = Out();
    out << '\n' << view.title << '\n' << "  " << Printable(view.comment) << '\n';
    for (const auto& row : view.rows) out << "  " << row.caption << ' ' << Printable(row.text) << '\n';
    out << "  " << view.programInfoCaption << ' ' << Printable(view.programInfo) << '\n';
    out << "  " << view.callStackCaption << '\n';
    for (const std::string& entry : view.callStack) out << "    " << entry << '\n';
    out << view.protocolCaption << '\n';
    for (std::size_t i = Menu::kChoices; i < menu.Count(); ++i) out << "  " << menu.Line(i);
    out << '\n' << view.continueCaption << '\n';
    for (std::size_t i = 0; i < Menu::kChoices; ++i) out << "  " << menu.Line(i) << '\n';
}

/// One line: the failure, then module, procedure, line and the choice.
void Desktop::ShowBriefly(const FailureView& view, const std::string& choice) const {
    std::ostream& out = Out();
    out << options_.program;
    const char* separator = ": ";
    for (const auto& row : view.rows) {
        out << separator << row.caption << ' ' << Printable(row.text, ' ');
        separator = "; ";
    }
    out << " -> " << choice << '\n' << std::flush;
}

void Desktop::TellFailure(const RuntimeError& failure) const {
    Out() << options_.program << ": " << failure.Number() << " (" << Printable(failure.Description(), ' ')
          << ")\n"
          << std::flush;
}

}  // namespace orvo::console
