// Starting another program and waiting for its end.
#pragma once

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
};

}  // namespace orvo
