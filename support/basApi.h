// Module basApi: reading texts from the registry.
#pragma once

#include <string>

#include "support/Variant.h"

namespace orvo {

/// The value `strValue` of the registry key `strPath` below the open key `hKey`, as a Variant that holds a
/// text. REG_SZ gives its text, REG_BINARY its first two bytes as a signed number; anything else, and
/// whatever is missing, the empty text.
Variant GetString(Long hKey, const std::string& strPath, const std::string& strValue);

}  // namespace orvo
