// How the path texts that travel through the component become names on the disk.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace orvo {

/// The name on the disk of a path text: "\" and "/" are separators alike.
inline std::string SystemPath(std::string_view path) {
    std::string name(path);
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

}  // namespace orvo
