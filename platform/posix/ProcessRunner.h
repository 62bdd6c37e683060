// Starting other programs.
#pragma once

#include <sys/types.h>

#include "platform/Process.h"

namespace orvo::posix {

/// The program runs in a process group of its own, with no open files but /dev/null and the pipe that
/// collects its output. Of that the last 20 lines and 4096 bytes are kept. An interrupted program's group is
/// asked to end by SIGTERM and killed after 1 second. What the program left running in the background is not
/// waited for.
class ProcessRunner final : public IProcessRunner {
  public:
    ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& workingFolder, const std::function<bool()>& interrupted) override;
    ProcessResult Start(const std::string& program, const std::vector<std::string>& arguments,
                        std::chrono::milliseconds patience) override;

  private:
    std::vector<pid_t> left_;  ///< running on; asked for their end at the next start
};

}  // namespace orvo::posix
