// Paths as the component can use them.
#pragma once

#include <string>

namespace orvo::tiling {

/// The component composes names with "\" for a separator, so no path may hold one. Fails with UsageError.
/// @param what the path is, such as "INPUT"
void RefuseBackslash(const std::string& what, const std::string& path);

/// A source is read several times, from its beginning. Fails with UsageError where it is empty, or a pipe,
/// socket or device.
void RefuseStream(const std::string& input);

/// The part of a path behind its last separator of either kind.
std::string FileNameOf(const std::string& path);

}  // namespace orvo::tiling
