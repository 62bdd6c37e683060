#include "tiling/Paths.h"

#include "tiling/Errors.h"

namespace orvo::tiling {

void RefuseBackslash(const std::string& what, const std::string& path) {
    if (path.find('\\') == std::string::npos) return;
    throw UsageError(what + " \"" + path +
                     "\" holds a backslash, which separates folders here; rename it, or use a "
                     "symbolic link without one");
}

std::string FileNameOf(const std::string& path) {
    return path.substr(path.find_last_of("/\\") + 1);
}

}  // namespace orvo::tiling
