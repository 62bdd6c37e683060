// Programs that are started and waited for.
#pragma once

#include "platform/Process.h"

namespace orvo::windows {

/// Starts a program without a window and without standard input; its output is read through a pipe. The
/// program and whatever it starts ends with the run.
class ProcessRunner final : public IProcessRunner {
  public:
    ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& workingFolder, const std::function<bool()>& interrupted) override;
    ProcessResult Start(const std::string& program, const std::vector<std::string>& arguments,
                        std::chrono::milliseconds patience) override;
};

}  // namespace orvo::windows
