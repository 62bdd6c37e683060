// How the path texts that travel through the component become names on the disk.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>

namespace orvo {

/// The name on the disk of a path text: "\" and "/" are separators alike.
inline std::string SystemPath(std::string_view path) {
    std::string name(path);
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

/// The same as a path of the standard library, which takes texts for UTF-8 only where it is told so.
inline std::filesystem::path DiskPath(std::string_view path) {
    const std::string name = SystemPath(path);
    return std::u8string(name.begin(), name.end());
}

/// The text of such a path.
inline std::string PathText(const std::filesystem::path& path) {
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

}  // namespace orvo
