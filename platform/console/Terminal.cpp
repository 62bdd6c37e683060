#include "platform/console/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

namespace orvo::console {
namespace {

/// Closes its descriptor unless that is one of the standard ones.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ > STDERR_FILENO) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Number() const { return number_; }

  private:
    int number_;
};

bool InForeground(int terminal) {
    return tcgetpgrp(terminal) == getpgrp();
}

std::optional<std::string> ReadLine(int descriptor) {
    std::string line;
    char c = 0;
    for (;;) {
        const ssize_t count = read(descriptor, &c, 1);
        if (count == 0 && !line.empty()) return line;  // the last line may lack its end
        if (count != 1) return std::nullopt;
        if (c == '\n') return line;
        line += c;
    }
}

}  // namespace

LineReader TerminalReader() {
    if (isatty(STDERR_FILENO) == 0) return {};
    const bool standardInput = isatty(STDIN_FILENO) != 0;
    const auto terminal =
        std::make_shared<Descriptor>(standardInput ? STDIN_FILENO : open("/dev/tty", O_RDONLY | O_CLOEXEC));
    if (terminal->Number() < 0 || !InForeground(terminal->Number())) return {};
    return [terminal] { return ReadLine(terminal->Number()); };
}

Clipboard TerminalClipboard() {
    const char* const value = std::getenv("TERM");
    const std::string kind = value == nullptr ? "" : value;
    if (isatty(STDERR_FILENO) == 0 || kind.empty() || kind == "dumb" || kind == "linux")
        return Clipboard::None;
    if (std::getenv("TMUX") != nullptr) return Clipboard::Tmux;
    return std::getenv("STY") != nullptr ? Clipboard::Screen : Clipboard::Terminal;
}

}  // namespace orvo::console
