#include "platform/console/Desktop.h"

#include <cctype>
#include <iostream>
#include <utility>

namespace orvo::console {
namespace {

constexpr Integer kNextStatement = 1;
constexpr Integer kLeave = 2;

struct Caption {
    std::string plain;
    std::string marked;  ///< the access key in brackets
    std::string key;     ///< the access key, lower case; empty where there is none
};

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

/// The bytes of the UTF-8 character that begins at `position`.
std::size_t CharacterLength(const std::string& text, std::size_t position) {
    std::size_t end = position + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) ++end;
    return end - position;
}

/// A caption without its ampersand and with the access key marked.
Caption ReadCaption(const std::string& text) {
    const auto mark = text.find('&');
    if (mark == std::string::npos || mark + 1 == text.size()) return {text, text, ""};
    const auto length = CharacterLength(text, mark + 1);
    const std::string key = text.substr(mark + 1, length);
    const std::string before = text.substr(0, mark);
    const std::string after = text.substr(mark + 1 + length);
    return {before + key + after, before + "[" + key + "]" + after, Lower(key)};
}

std::string Trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The choice that an answer names by its number or access key; −1 for none.
Integer ChoiceOf(const std::string& answer, const FailureView& view) {
    for (std::size_t i = 0; i < view.choices.size(); ++i) {
        if (answer == std::to_string(i + 1) ||
            (!answer.empty() && answer == ReadCaption(view.choices[i]).key)) {
            return static_cast<Integer>(i);
        }
    }
    return -1;
}

}  // namespace

Desktop::Desktop(DesktopOptions options) : options_(std::move(options)) {
    if (options_.out == nullptr) options_.out = &std::cerr;
    if (options_.policy == Policy::Ask && !options_.read) options_.policy = Policy::Leave;
}

MessageAnswer Desktop::MessageBox(const std::string& text, const std::string& title, MessageIcon,
                                  MessageButtons buttons) {
    ++messagesShown_;
    options_.makeRoom();
    std::ostream& out = *options_.out;
    out << options_.prefix << title << ": " << text << '\n';
    if (buttons == MessageButtons::OK) return MessageAnswer::OK;
    while (options_.read && !options_.interrupted()) {
        out << "[y/n] " << std::flush;
        const auto line = options_.read();
        if (!line) break;
        const std::string answer = Lower(Trimmed(*line));
        if (answer == "y" || answer == "yes" || answer == "j" || answer == "ja" || answer == "o" ||
            answer == "oui") {
            return MessageAnswer::Yes;
        }
        if (answer == "n" || answer == "no" || answer == "nein" || answer == "non") return MessageAnswer::No;
    }
    out << '\n';
    return MessageAnswer::No;
}

void Desktop::ShowModal(IDialogEvents& dialog) {
    dialog.Form_Activate();
    const FailureView view = ViewOf(dialog.Controls());
    if (options_.interrupted()) {
        dialog.cmdContinue_Click(kLeave);
        return;
    }
    ++failuresShown_;
    options_.makeRoom();
    if (!view.rows.empty()) options_.onFailure(view.rows.front().text);
    if (options_.policy == Policy::Ask) {
        ShowWhole(view);
        dialog.cmdContinue_Click(Answer(view));
    } else {
        const Integer choice = options_.policy == Policy::Next ? kNextStatement : kLeave;
        ShowBriefly(view, choice);
        dialog.cmdContinue_Click(choice);
    }
}

void Desktop::Beep() {
    if (options_.read && !options_.interrupted()) *options_.out << '\a' << std::flush;
}

void Desktop::Print(const std::vector<std::string>&) {
    throw RuntimeError(482, "Printer error");
}

void Desktop::CopyToClipboard(const std::string&) {
    throw RuntimeError(521, "Can't open Clipboard");
}

void Desktop::Open(const std::string& address) {
    *options_.out << address << '\n';
}

/// Asks until an answer names a choice; the end of input leaves the procedure.
Integer Desktop::Answer(const FailureView& view) const {
    for (;;) {
        *options_.out << "> " << std::flush;
        const auto line = options_.read();
        if (!line) {
            *options_.out << '\n';
            return kLeave;
        }
        const Integer choice = ChoiceOf(Lower(Trimmed(*line)), view);
        if (choice >= 0) return choice;
    }
}

void Desktop::ShowWhole(const FailureView& view) const {
    std::ostream& out = *options_.out;
    out << '\n' << view.title << '\n';
    for (const auto& row : view.rows) out << "  " << row.caption << ' ' << row.text << '\n';
    out << "  " << view.programInfo << '\n' << "  " << view.callStackCaption << '\n';
    for (const std::string& entry : view.callStack) out << "    " << entry << '\n';
    out << view.continueCaption << '\n';
    for (std::size_t i = 0; i < view.choices.size(); ++i) {
        out << "  " << i + 1 << "  " << ReadCaption(view.choices[i]).marked << '\n';
    }
}

/// One line: the failure, then module, procedure, line and the choice.
void Desktop::ShowBriefly(const FailureView& view, Integer choice) const {
    std::ostream& out = *options_.out;
    out << options_.prefix;
    const char* separator = "";
    for (const auto& row : view.rows) {
        out << separator << row.caption << ' ' << row.text;
        separator = "; ";
    }
    out << " -> " << ReadCaption(view.choices.at(static_cast<std::size_t>(choice))).plain << '\n'
        << std::flush;
}

}  // namespace orvo::console
