#include "tiling/Paths.h"

#include <filesystem>
#include <vector>

#include "platform/gdal/DatasetName.h"
#include "tiling/Errors.h"

namespace fs = std::filesystem;

namespace orvo::tiling {

void RefuseBackslash(const std::string& what, const std::string& path) {
    if (path.find('\\') == std::string::npos) return;
    throw UsageError(what + " \"" + path +
                     "\" holds a backslash, which separates folders here; rename it, or use a "
                     "symbolic link without one");
}

void RefuseStream(const std::string& input) {
    if (input.empty()) throw UsageError("INPUT is empty; name a file, or any source that GDAL opens");
    std::vector<std::string> files{input};
    while (files.back().starts_with("/vsi") && files.back().find('/', 1) != std::string::npos)
        files.push_back(files.back().substr(files.back().find('/', 1) + 1));
    if (const auto contained = gdal::ParseContainedName(input)) files.push_back(contained->container);
    for (const std::string& file : files) {
        std::error_code missing;
        const fs::file_status status = fs::status(file, missing);
        if (fs::is_fifo(status) || fs::is_socket(status) || fs::is_character_file(status) ||
            file.starts_with("/vsistdin"))
            throw UsageError(
                "INPUT \"" + input +
                "\" can be read only once, and layers are read several times; write it to a file "
                "first");
    }
}

std::string FileNameOf(const std::string& path) {
    return path.substr(path.find_last_of("/\\") + 1);
}

}  // namespace orvo::tiling
