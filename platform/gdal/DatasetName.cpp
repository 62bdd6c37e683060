#include "platform/gdal/DatasetName.h"

#include <filesystem>

namespace orvo::gdal {
namespace {

bool Exists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// "file":inner
std::optional<ContainedName> SplitQuoted(const std::string& text) {
    const auto end = text.find('"', 1);
    if (text.empty() || text[0] != '"' || end == std::string::npos) return std::nullopt;
    const std::string rest = text.substr(end + 1);
    return ContainedName{text.substr(1, end - 1), rest.substr(rest.starts_with(':') ? 1 : 0)};
}

/// file:inner or inner:file, whichever part exists; a file's name may hold colons of its own.
std::optional<ContainedName> SplitAtFile(const std::string& text) {
    for (auto colon = text.rfind(':'); colon != std::string::npos && colon > 0;
         colon = text.rfind(':', colon - 1)) {
        const std::string before = text.substr(0, colon);
        const std::string behind = text.substr(colon + 1);
        if (Exists(before)) return ContainedName{before, behind};
        if (Exists(behind)) return ContainedName{behind, before};
    }
    return std::nullopt;
}

}  // namespace

std::optional<ContainedName> ParseContainedName(const std::string& name) {
    if (Exists(name)) return std::nullopt;
    if (name.starts_with("/vsi")) {
        const auto slash = name.rfind('/');
        return ContainedName{name.substr(0, slash), name.substr(slash + 1)};
    }
    const auto colon = name.find(':');
    if (colon == std::string::npos) return std::nullopt;
    const std::string rest = name.substr(colon + 1);
    if (auto parts = SplitQuoted(rest)) return parts;
    if (auto parts = SplitAtFile(rest)) return parts;
    return ContainedName{rest, ""};
}

std::string StemOf(const std::string& path) {
    const std::string last = path.substr(path.find_last_of("/\\") + 1);
    return last.substr(0, last.rfind('.'));
}

}  // namespace orvo::gdal
