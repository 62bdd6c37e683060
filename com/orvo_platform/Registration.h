// The server's entries in the registry.
#pragma once

#include "platform/windows/system/Win32.h"

namespace orvo::windows {

/// For whom stands in the environment variable ORVO_TILE_SCOPE: "machine" or "user". Without it registration
/// is for the machine, and for the user where that is refused; removal takes away both.
HRESULT Register();
HRESULT Unregister();

}  // namespace orvo::windows
