#include "tiling/output/WorkFolder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>

#include "platform/files/PartFile.h"
#include "tiling/Errors.h"
#include "tiling/output/JsonText.h"
#include "tiling/output/Publish.h"

namespace fs = std::filesystem;

namespace orvo::tiling {
namespace {

const std::string kRun = ".orvo-tile-run";
constexpr const char* kMaking = "/making";
constexpr const char* kJournal = "/journal";

void Make(const std::string& folder) {
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (failed) throw RunError("cannot make the folder \"" + folder + "\": " + failed.message());
}

bool IsThere(const std::string& path) {
    std::error_code failed;
    return fs::exists(fs::symlink_status(path, failed));
}

[[noreturn]] void RefuseTaken(const std::string& name) {
    throw RunError("\"" + name + "\" is in the folder already; move it away, or name another OUTDIR");
}

}  // namespace

std::string PartText(const PartNumber& part) {
    return "-" + std::to_string(part.part) + "-of-" + std::to_string(part.parts);
}

std::string PartRecordName(const PartNumber& part) {
    return "part" + PartText(part) + ".json";
}

std::string WorkFolderName(const PartNumber& part) {
    return part.parts == 0 ? kRun : kRun + PartText(part);
}

bool IsWorkFolderName(const std::string& name) {
    return name == kRun || name.starts_with(kRun + "-");
}

std::optional<PartNumber> PartOfRecord(const std::string& name) {
    static const std::regex kName(R"(part-([1-9][0-9]{0,8})-of-([1-9][0-9]{0,8})\.json)");
    std::smatch found;
    if (!std::regex_match(name, found, kName)) return std::nullopt;
    return PartNumber{std::stoi(found[1]), std::stoi(found[2])};
}

WorkFolder::WorkFolder(const std::string& outdir, const PartNumber& part)
    : outdir_(outdir), own_(outdir + "/" + WorkFolderName(part)), path_(own_ + kMaking) {
    Make(path_);
    Clear();
    const std::string journal = own_ + kJournal;
    journal_ = open(journal.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (journal_ < 0) throw RunError("cannot write \"" + journal + "\": " + std::strerror(errno));
}

WorkFolder::~WorkFolder() {
    close(journal_);
    std::error_code ignored;
    fs::remove_all(kept_ ? path_ : own_, ignored);
}

void WorkFolder::Note(const Entry& names) const {
    const std::string line = "\n" + TextOf(Json(names)) + "\n";  // one that was cut off before ends there
    if (write(journal_, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        throw RunError("cannot write the run's journal: " + std::string(std::strerror(errno)));
}

void WorkFolder::Publish(const std::vector<std::string>& from, const Entry& names) {
    for (const std::string& name : names) {
        if (IsThere(outdir_ + "/" + name)) RefuseTaken(name);
        if (const auto slash = name.rfind('/'); slash != std::string::npos)
            Make(outdir_ + "/" + name.substr(0, slash));
    }
    Note(names);
    std::size_t left = names.size();
    try {
        for (; left > 0; --left) {
            if (!MoveNew(from[left - 1], outdir_ + "/" + names[left - 1])) RefuseTaken(names[left - 1]);
        }
    } catch (...) {
        for (; left < names.size(); ++left) {
            std::error_code failed;
            fs::rename(outdir_ + "/" + names[left], from[left], failed);
            kept_ = kept_ || failed;
        }
        throw;
    }
}

std::vector<std::string> WorkFolder::PublishAll(const std::string& name, bool others) {
    Entry names{name};
    for (auto entry = others ? fs::directory_iterator(path_) : fs::directory_iterator();
         entry != fs::end(entry); ++entry) {
        std::string other = entry->path().filename().string();
        // What cannot be told from the folders of others is not made: nobody could clear it away.
        if (!entry->is_regular_file())
            throw RunError("the format keeps \"" + other +
                           "\" beside its file, which is none; choose another --format");
        if (other != name) names.push_back(std::move(other));
    }
    std::vector<std::string> from;
    for (const std::string& one : names) from.push_back(path_ + "/" + one);
    Publish(from, names);
    names.erase(names.begin());
    return names;
}

void WorkFolder::Clear() const {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(path_, ignored)) fs::remove_all(entry.path(), ignored);
}

std::string WorkFolder::WithoutPath(std::string text) const {
    const std::string prefix = path_ + "/";
    for (std::size_t at = text.find(prefix); at != std::string::npos; at = text.find(prefix, at))
        text.erase(at, prefix.size());
    return text;
}

/// A line that was cut off when the run was killed names nothing that was moved.
std::vector<WorkFolder::Entry> WorkFolder::Noted(const std::string& outdir, const std::string& name) {
    std::ifstream journal(outdir + "/" + name + kJournal);
    std::vector<Entry> entries;
    for (std::string line; std::getline(journal, line);) {
        const Json entry = Json::parse(line, nullptr, false);
        if (!entry.is_array() || entry.empty()) continue;
        entries.push_back(entry.get<Entry>());
    }
    return entries;
}

void WorkFolder::Renew(const std::string& outdir, const PartNumber& part,
                       const std::map<std::string, std::vector<std::string>>& tiles) {
    const std::string folder = outdir + "/" + WorkFolderName(part);
    Make(folder);
    std::string text;
    for (const auto& [name, others] : tiles) {
        Entry entry{name};
        entry.insert(entry.end(), others.begin(), others.end());
        text += TextOf(Json(entry)) + "\n";
    }
    const std::string journal = folder + kJournal;
    if (const auto failed = files::WriteWhole(journal, text))
        throw RunError("cannot write \"" + journal + "\": " + failed.message());
}

}  // namespace orvo::tiling
