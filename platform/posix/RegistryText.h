// The text format in which the registry editor exports keys and values.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/Types.h"

namespace orvo::posix {

/// Texts are UTF-8 with the terminating zeros that the file gives them; a quoted text ends in one.
struct RegistryValue {
    Long type = 0;
    std::string data;
};

/// Values by folded name; the default value has the empty name.
using RegistryKey = std::map<std::string, RegistryValue>;
/// Keys by folded full path, "hkey_current_user\software"; the keys above a key are there too.
using RegistryKeys = std::map<std::string, RegistryKey>;

/// Names of keys and values that differ in case alone are the same name.
std::string FoldName(std::string_view name);

/// Adds a key and those above it.
RegistryKey& AddKey(RegistryKeys& keys, const std::string& foldedPath);

/// Reads an exported file, "Windows Registry Editor Version 5.00" as UTF-16 or UTF-8, or REGEDIT4. Lines that
/// are not understood are passed over.
RegistryKeys ParseRegistry(std::string_view bytes);

}  // namespace orvo::posix
