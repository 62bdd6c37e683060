// A folder of its own for each test.
#pragma once

#include <fstream>
#include <random>
#include <vector>

#include "support/SystemPath.h"

namespace orvo {

class TempFolder {
  public:
    /// @param name of the innermost folder
    explicit TempFolder(const std::string& name = "work") {
        std::random_device random;
        do {
            root_ = std::filesystem::temp_directory_path() / ("orvo-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(root_));
        path_ = root_ / DiskPath(name);
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string Path() const { return Text(path_); }
    std::string operator/(const std::string& name) const { return Text(path_ / DiskPath(name)); }

    std::string Put(const std::string& name, const std::string& content) const {
        std::ofstream(path_ / DiskPath(name), std::ios::binary) << content;
        return *this / name;
    }
    /// An executable shell script; `"$1"` and so on are its arguments.
    std::string PutScript(const std::string& name, const std::string& commands) const {
        std::string file = Put(name, "#!/bin/sh\n" + commands + "\n");
        std::filesystem::permissions(file, std::filesystem::perms::all);
        return file;
    }
    /// Names of all that is in the folder, hidden things too, sorted.
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            names.push_back(Text(entry.path().filename()));
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    /// With the system's own separators.
    static std::string Text(const std::filesystem::path& path) {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    }

    std::filesystem::path root_;
    std::filesystem::path path_;
};

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(DiskPath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace orvo
