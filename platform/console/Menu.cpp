#include "platform/console/Menu.h"

#include <string_view>

#include "support/Text.h"

namespace orvo::console {

Menu::Menu(const FailureView& view) {
    for (const std::string& caption : view.choices) entries_.push_back(Read(caption));
    for (const std::string& caption : view.protocol) entries_.push_back(Read(caption));
}

Menu::Entry Menu::Read(const std::string& caption) {
    const auto mark = caption.find('&');
    if (mark == std::string::npos || mark + 1 == caption.size()) return {caption, caption, ""};
    const std::string before = caption.substr(0, mark);
    const std::string key = Left(std::string_view(caption).substr(mark + 1), 1);
    const std::string after = caption.substr(mark + 1 + key.size());
    return {before + key + after, before + "[" + key + "]" + after, LCase(key)};
}

std::string Menu::Line(std::size_t button) const {
    const Entry& entry = entries_.at(button);
    const bool serves = !entry.key.empty() && Named(entry.key).size() == 1;
    return std::to_string(button + 1) + "  " + (serves ? entry.marked : entry.plain);
}

std::vector<std::size_t> Menu::Named(const std::string& answer) const {
    const std::string wanted = LCase(Trim(answer, " \t\r"));
    std::vector<std::size_t> named;
    for (std::size_t i = 0; i < entries_.size() && !wanted.empty(); ++i)
        if (wanted == std::to_string(i + 1) || wanted == entries_[i].key) named.push_back(i);
    return named;
}

}  // namespace orvo::console
