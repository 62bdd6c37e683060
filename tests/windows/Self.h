// The test program as a program that its own tests start.
#pragma once

#include <string>

namespace orvo {

/// The full path of the program that runs. With "--echo" or "--wait" as its first argument it echoes the
/// others, at once or after 30 s, and ends with 3; with "./SOURCE TARGET QUALITY" it copies as a converter
/// does.
std::string Self();

}  // namespace orvo
