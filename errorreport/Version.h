// The component's own name and version.
#pragma once

namespace orvo {

inline constexpr const char* kComponentName = "Orvo_Tile";
inline constexpr int kVersionMajor = 1;
inline constexpr int kVersionMinor = 0;
inline constexpr int kVersionRevision = 0;

}  // namespace orvo
