// What a source was when a job began.
#pragma once

#include <string>
#include <vector>

#include "tiling/output/JsonText.h"

namespace orvo::tiling {

/// Sizes in bytes and times in nanoseconds since 1970 of the regular files among these, by their full names:
/// they tell whether one has changed since.
Json SourceStamps(const std::vector<std::string>& files);

/// An input as any process finds it: by its full name where it stands on the disk.
std::string FullName(const std::string& input);

}  // namespace orvo::tiling
