#include "tiling/output/Publish.h"

#include <utility>

#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

void Require(const std::error_code& failed, const std::string& path) {
    if (failed) throw RunError("cannot write \"" + path + "\": " + failed.message());
}

}  // namespace

DraftFile::DraftFile(const std::string& folder, const std::string& extension)
    : part_(folder, extension, failed_) {
    Require(failed_, folder);
}

void DraftFile::Write(const std::string& text) {
    Require(part_.Write(text), Path());
}

bool DraftFile::Publish(const std::string& name) {
    const std::string path = (part_.Path().parent_path() / name).string();
    const std::error_code failed = part_.MoveToNew(path);
    if (failed == std::errc::file_exists) return false;
    Require(failed, path);
    published_ = path;
    return true;
}

void DraftFile::Withdraw() {
    if (published_.empty()) return;
    Require(part_.MoveBack(published_), published_);
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
    const std::error_code failed = files::MoveNew(from, to);
    if (failed == std::errc::file_exists) return false;
    Require(failed, to);
    return true;
}

std::string NumberedName(const std::string& stem, int number, const std::string& extension) {
    return number == 1 ? stem + extension : stem + "_" + std::to_string(number) + extension;
}

}  // namespace orvo::tiling
