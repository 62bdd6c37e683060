// Text files on the disk.
#pragma once

#include "platform/System.h"

namespace orvo::posix {

/// Appends under a lock on the file and with one write where the system takes it whole; takes back what a
/// full disk cut short. A file that replaces another is written beside it first. New files are their owner's
/// alone; links are not followed (number 70).
class TextFiles final : public ITextFiles {
  public:
    bool Exists(const std::string& path) override;
    void Append(const std::string& path, const std::string& text) override;
    void Replace(const std::string& path, const std::string& text) override;
};

}  // namespace orvo::posix
