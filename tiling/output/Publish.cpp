#include "tiling/output/Publish.h"

#include <utility>

#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

constexpr const char* kIndexExtension = ".geojson";

void Require(const std::error_code& failed, const std::string& path) {
    if (failed) throw RunError("cannot write \"" + path + "\": " + failed.message());
}

}  // namespace

DraftFile::DraftFile(const std::string& folder, const std::string& extension)
    : part_(folder, extension, failed_) {
    Require(failed_, folder);
}

void DraftFile::Reserve(std::uintmax_t bytes) {
    Require(part_.Reserve(bytes), Path());
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

DraftSet::DraftSet(std::string folder, std::uintmax_t indexRoom)
    : folder_(std::move(folder)), index_(folder_, kIndexExtension) {
    index_.Reserve(indexRoom);
}

void DraftSet::Add(const std::string& stem, const std::string& extension, std::unique_ptr<DraftFile> file) {
    members_.push_back({stem, extension, "", std::move(file)});
}

void DraftSet::Add(const std::string& stem, const std::string& extension, const std::string& text) {
    auto file = std::make_unique<DraftFile>(folder_, extension);
    file->Write(text);
    Add(stem, extension, std::move(file));
}

std::string DraftSet::Publish(const std::function<std::string(const std::vector<std::string>&)>& text) {
    for (int number = 1;; ++number) {
        std::vector<std::string> names;
        for (Member& member : members_)
            names.emplace_back(member.name = NumberedName(member.stem, number, member.extension));
        const std::string name = NumberedName("tiles", number, kIndexExtension);
        index_.Write(text(names));
        if (index_.Publish(name) && PublishMembers()) return folder_ + "/" + name;
        Withdraw();
    }
}

/// False where a name is taken.
bool DraftSet::PublishMembers() {
    for (const Member& member : members_) {
        try {
            if (!member.file->Publish(member.name)) return false;
        } catch (const RunError& error) {
            errors_.emplace_back(error.what());
        }
    }
    return true;
}

void DraftSet::Withdraw() {
    index_.Withdraw();
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
