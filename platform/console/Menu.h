// The error dialog's buttons as a list to choose from.
#pragma once

#include <string>
#include <vector>

#include "platform/FailureView.h"

namespace orvo::console {

/// Every button has a number, from 1: the three choices, then the four report buttons. The access key of a
/// caption serves, too, where no other button has it.
class Menu {
  public:
    static constexpr std::size_t kChoices = 3;

    explicit Menu(const FailureView& view);

    std::size_t Count() const { return entries_.size(); }
    /// "2  [C]ontinue": brackets mark a letter that serves.
    std::string Line(std::size_t button) const;
    /// Caption without its ampersand.
    const std::string& Plain(std::size_t button) const { return entries_.at(button).plain; }
    /// The buttons that an answer names, by number or letter in any case. Several share the letter.
    std::vector<std::size_t> Named(const std::string& answer) const;

  private:
    struct Entry {
        std::string plain;
        std::string marked;  ///< the access key in brackets
        std::string key;     ///< in lower case; empty where there is none
    };
    static Entry Read(const std::string& caption);

    std::vector<Entry> entries_;
};

}  // namespace orvo::console
