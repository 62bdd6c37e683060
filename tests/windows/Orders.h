// The test program as a program that its own tests start.
#pragma once

#include <optional>
#include <string>

namespace orvo {

/// The full path of the program that runs.
std::string Self();

/// Does what a test ordered: "--echo" and "--wait", or copies SOURCE to TARGET as a converter
/// does.
/// @return the exit code; none where the program was started to run the tests
std::optional<int> FollowOrder(int count, char** arguments);

}  // namespace orvo
