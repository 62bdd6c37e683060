// Starting other programs.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace orvo {

struct ProcessResult {
    bool started = false;
    int exitCode = -1;   ///< of a normal end
    int signal = 0;      ///< that ended the program, 0 for none
    std::string output;  ///< the last lines of standard output and error together; why it could not start
};

class IProcessRunner {
  public:
    virtual ~IProcessRunner() = default;
    /// Starts a program directly, never through a shell, without standard input, in folder `workingFolder`,
    /// and waits. A program given by path is resolved against the caller's current folder, a bare name along
    /// PATH. Once `interrupted` holds, the program is ended and waited for.
    virtual ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                              const std::string& workingFolder, const std::function<bool()>& interrupted) = 0;
    /// Starts a program for the user, in a session of its own and without its output, and leaves it running;
    /// waits no longer than `patience` for an early end. Still running: exit code −1 and signal 0.
    virtual ProcessResult Start(const std::string& program, const std::vector<std::string>& arguments,
                                std::chrono::milliseconds patience) = 0;
};

}  // namespace orvo
