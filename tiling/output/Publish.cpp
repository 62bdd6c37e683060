#include "tiling/output/Publish.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

[[noreturn]] void Fail(const std::string& path) {
    throw RunError("cannot write \"" + path + "\": " + std::strerror(errno));
}

/// Renames without replacing, where the file system can; by a second name otherwise. 0 on success.
int RenameNew(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return -1;
    if (link(from.c_str(), to.c_str()) != 0) return -1;
    return unlink(from.c_str());
}

}  // namespace

DraftFile::DraftFile(const std::string& folder, const std::string& extension) : folder_(folder) {
    std::string path = folder + "/.orvo-tile-XXXXXX" + extension;
    const int file = mkostemps(path.data(), static_cast<int>(extension.size()), O_CLOEXEC);
    if (file < 0) Fail(path);
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(file, 0666 & ~mask);
    close(file);
    name_ = path.substr(folder.size() + 1);
}

DraftFile::~DraftFile() {
    if (published_.empty()) unlink((folder_ + "/" + name_).c_str());
}

void DraftFile::Write(const std::string& text) {
    const std::string path = folder_ + "/" + name_;
    std::FILE* const file = std::fopen(path.c_str(), "wbe");
    if (file == nullptr) Fail(path);
    const bool written =
        std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0;
    const int error = errno;
    const bool closed = std::fclose(file) == 0;
    if (written && closed) return;
    if (!written) errno = error;
    Fail(path);
}

bool DraftFile::Publish(const std::string& name) {
    const bool done = MoveNew(Path(), folder_ + "/" + name);
    if (done) published_ = name;
    return done;
}

void DraftFile::Withdraw() {
    if (published_.empty()) return;
    if (std::rename((folder_ + "/" + published_).c_str(), (folder_ + "/" + name_).c_str()) != 0) {
        Fail(folder_ + "/" + published_);
    }
    published_.clear();
}

void DraftSet::Add(const std::string& stem, const std::string& extension, std::unique_ptr<DraftFile> file) {
    members_.push_back({stem, extension, "", std::move(file)});
}

void DraftSet::Add(const std::string& stem, const std::string& extension, const std::string& text) {
    auto file = std::make_unique<DraftFile>(folder_, extension);
    file->Write(text);
    Add(stem, extension, std::move(file));
}

std::string DraftSet::Publish(const std::string& stem, const std::string& extension,
                              const std::function<std::string(const std::vector<std::string>&)>& text) {
    DraftFile index(folder_, extension);
    for (int number = 1;; ++number) {
        std::vector<std::string> names;
        for (Member& member : members_)
            names.emplace_back(member.name = NumberedName(member.stem, number, member.extension));
        const std::string name = NumberedName(stem, number, extension);
        try {
            index.Write(text(names));
            if (PublishMembers(index, name)) return folder_ + "/" + name;
        } catch (...) {
            Withdraw();
            throw;
        }
        Withdraw();
    }
}

bool DraftSet::PublishMembers(DraftFile& index, const std::string& name) {
    for (const Member& member : members_) {
        if (!member.file->Publish(member.name)) return false;
    }
    return index.Publish(name);
}

void DraftSet::Withdraw() {
    for (const Member& member : members_) member.file->Withdraw();
}

std::string DraftSet::PathOf(const std::string& stem) const {
    for (const Member& member : members_) {
        if (member.stem == stem && member.file->IsPublished()) return folder_ + "/" + member.name;
    }
    return "";
}

bool MoveNew(const std::string& from, const std::string& to) {
    if (RenameNew(from, to) == 0) return true;
    if (errno != EEXIST && errno != ENOTEMPTY) Fail(to);
    return false;
}

std::string NumberedName(const std::string& stem, int number, const std::string& extension) {
    return number == 1 ? stem + extension : stem + "_" + std::to_string(number) + extension;
}

}  // namespace orvo::tiling
