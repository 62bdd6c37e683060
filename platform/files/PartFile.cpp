#include "platform/files/PartFile.h"

#include "support/SystemPath.h"

namespace orvo::files {

PartFile::~PartFile() {
    std::error_code ignored;
    if (!moved_ && !path_.empty()) std::filesystem::remove(path_, ignored);
}

std::error_code PartFile::MoveTo(const std::filesystem::path& target) {
    const std::error_code failed = MoveOver(path_, target);
    moved_ = !failed;
    return failed;
}

std::error_code PartFile::MoveToNew(const std::filesystem::path& target) {
    const std::error_code failed = MoveNew(path_, target);
    moved_ = !failed;
    return failed;
}

std::error_code PartFile::MoveBack(const std::filesystem::path& target) {
    const std::error_code failed = MoveOver(target, path_);
    moved_ = static_cast<bool>(failed);
    return failed;
}

std::error_code WriteWhole(const std::filesystem::path& target, std::string_view bytes, Readers readers) {
    std::error_code failed;
    const auto folder = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    PartFile part(folder, PathText(target.extension()), failed, readers);
    if (!failed) failed = part.Write(bytes);
    return failed ? failed : part.MoveTo(target);
}

}  // namespace orvo::files
