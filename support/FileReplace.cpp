#include "support/FileReplace.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace orvo {
namespace {

namespace fs = std::filesystem;

std::string LastError() {
    return std::generic_category().message(errno);
}

/// Writes a whole file; the reason where that failed.
std::string WriteFile(const fs::path& path, std::span<const unsigned char> bytes) {
    std::FILE* file = std::fopen(path.string().c_str(), "wb");
    if (file == nullptr) return LastError();
    std::string reason;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size() || std::fflush(file) != 0) {
        reason = LastError();
    }
    if (std::fclose(file) != 0 && reason.empty()) reason = LastError();
    return reason;
}

}  // namespace

fs::path PartName(const fs::path& target) {
    fs::path name = ".part-";
    name += target.filename();
    return target.parent_path() / name;
}

std::string Commit(const fs::path& part, const fs::path& target) {
    std::error_code failed;
    fs::rename(part, target, failed);
    if (!failed) return {};
    std::string reason = failed.message();
    fs::remove(part, failed);
    return reason;
}

std::string ReplaceFile(const fs::path& target, std::span<const unsigned char> bytes) {
    const fs::path part = PartName(target);
    std::string reason = WriteFile(part, bytes);
    if (reason.empty()) return Commit(part, target);
    std::error_code ignored;
    fs::remove(part, ignored);
    return reason;
}

std::string ReplaceFile(const fs::path& target, std::string_view text) {
    return ReplaceFile(target, std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
}

}  // namespace orvo
