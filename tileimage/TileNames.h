// How tile files are named.
#pragma once

#include <string>

#include "platform/Platform.h"
#include "support/Text.h"

namespace orvo {

/// "i" and the local time of day as hhnnss.
inline std::string TileBaseName() {
    IClock& clock = Object(platform::Current().clock);
    return "i" + CompactClockText(clock.Local(clock.Seconds()));
}

/// Parent folder, "\" and the name without its last extension: what side files have in common.
inline std::string StemOf(IFileSystemObject& files, const std::string& path) {
    return files.GetParentFolderName(path) + "\\" + files.GetBaseName(path);
}

}  // namespace orvo
