// The server's entries in the registry: classes, ProgIDs, interfaces, type library.
#pragma once

#include "platform/windows/system/Win32.h"

namespace orvo::com {

/// Environment variable that says for whom: "machine" or "user". Without it registration is for the machine,
/// and for the user where that is refused; removal takes away both.
inline constexpr const wchar_t* kScopeVariable = L"ORVO_TILE_SCOPE";

/// Writes all entries, or none: what a failure leaves half is taken back.
HRESULT Register();
/// Removes all entries; entries that are missing are no failure.
HRESULT Unregister();

}  // namespace orvo::com
