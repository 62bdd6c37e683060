#include "tiling/output/SourceStamp.h"

#include <chrono>
#include <filesystem>

namespace fs = std::filesystem;

namespace orvo::tiling {

Json SourceStamps(const std::vector<std::string>& files) {
    Json stamps = Json::object();
    for (const std::string& file : files) {
        std::error_code failed;
        const fs::path path = fs::weakly_canonical(file, failed);
        if (!fs::is_regular_file(path, failed)) continue;
        const auto time = std::chrono::file_clock::to_sys(fs::last_write_time(path, failed));
        const auto sinceEpoch = std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch());
        stamps[path.string()] = {{"size", fs::file_size(path, failed)}, {"modified", sinceEpoch.count()}};
    }
    return stamps;
}

std::string FullName(const std::string& input) {
    std::error_code failed;
    return fs::exists(input, failed) ? fs::weakly_canonical(input, failed).string() : input;
}

}  // namespace orvo::tiling
