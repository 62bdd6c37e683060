#include "tiling/output/OutputFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string_view>
#include <system_error>

#include "platform/files/PartFile.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"
#include "tiling/output/WorkFolder.h"

namespace fs = std::filesystem;

namespace orvo::tiling {
namespace {

std::string Quoted(const std::string& path) {
    return "\"" + path + "\"";
}

/// A folder that is open. Names in it may lead into folders within, but links are not followed.
class OpenFolder {
  public:
    explicit OpenFolder(const std::string& path)
        : number_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (number_ < 0)
            throw RunError("cannot open the folder " + Quoted(path) + ": " + std::strerror(errno));
    }
    ~OpenFolder() { close(number_); }
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;

    /// Removes a regular file; anything else stays. Then folders on its way that are empty.
    void Remove(const std::string& name) const {
        if (const auto slash = name.find('/'); slash != std::string::npos) {
            const std::string inner = name.substr(0, slash);
            {
                const OpenFolder folder(number_, inner);
                if (folder.number_ < 0) return;
                folder.Remove(name.substr(slash + 1));
            }
            unlinkat(number_, inner.c_str(), AT_REMOVEDIR);
            return;
        }
        if (IsRegularFile(name) && unlinkat(number_, name.c_str(), 0) != 0 && errno != ENOENT) {
            throw RunError("cannot remove " + Quoted(name) + " of an earlier run: " + std::strerror(errno));
        }
    }

  private:
    OpenFolder(int parent, const std::string& name)
        : number_(openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {}
    bool IsRegularFile(const std::string& name) const {
        struct stat status {};
        return fstatat(number_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode);
    }

    int number_;
};

bool SameFile(const fs::path& a, const fs::path& b) {
    std::error_code missing;
    return fs::equivalent(a, b, missing) && !missing;
}

/// What only a run that was killed leaves: part files, folders of its own, marks of reserved names.
bool IsLeftover(std::string_view name) {
    const auto isOnly = [](std::string_view text, std::string_view others) {
        return std::ranges::all_of(text, [&](char c) {
            return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                   others.find(c) != std::string_view::npos;
        });
    };
    constexpr std::string_view kPart = ".orvo-tile-", kConvert = ".convert-", kMark = ".i",
                               kEnd = ".reserved";
    if (name.starts_with(kPart)) return isOnly(name.substr(kPart.size()), "-.");
    if (name.starts_with(kConvert)) return isOnly(name.substr(kConvert.size()), "");
    return name.starts_with(kMark) && name.ends_with(kEnd) && name.size() > kMark.size() + kEnd.size() + 6 &&
           isOnly(name.substr(1, name.size() - 1 - kEnd.size()), "_-");
}

std::string Resolved(const std::string& path) {
    if (path.empty()) throw UsageError("OUTDIR is empty; name a folder");
    std::error_code failed;
    std::string text = fs::weakly_canonical(fs::absolute(path), failed).string();
    if (failed) throw UsageError("OUTDIR " + Quoted(path) + " cannot be used: " + failed.message());
    while (text.size() > 1 && text.ends_with('/')) text.pop_back();
    return text;
}

}  // namespace

OutputFolder::OutputFolder(const std::string& path) : path_(Resolved(path)) {
    RefuseBackslash("OUTDIR", path_);
    std::error_code ignored;
    if (fs::exists(path_, ignored) && !fs::is_directory(path_, ignored)) {
        throw UsageError("OUTDIR " + Quoted(path) + " is a file; name a folder");
    }
}

void OutputFolder::CheckEarlier(Earlier earlier, const std::vector<std::string>& keep, const Json& job,
                                const PartNumber& part) {
    earlier_ = earlier;
    part_ = part;
    keep_ = keep;
    job_ = job;
    static_cast<void>(LookAtEarlier());
}

EarlierRun OutputFolder::LookAtEarlier() const {
    EarlierRun run = ReadEarlierRun(path_, part_);
    if (!run.IsThere()) return run;
    if (earlier_ == Earlier::Part && !run.indexes.empty())
        throw UsageError("OUTDIR " + Quoted(path_) + " holds a run that is finished (" + run.indexes.front() +
                         "); name another folder for the parts");
    const std::string what = run.indexes.empty() ? kJobFile : run.indexes.front();
    if (earlier_ == Earlier::Refuse) {
        throw UsageError("OUTDIR " + Quoted(path_) + " holds tiles already (" + what +
                         "); use --overwrite to replace them, --resume to go on where a run of the same job "
                         "ended, or name another folder");
    }
    if (earlier_ != Earlier::Remove) {
        const std::string other = run.job.is_null() ? "there is no job.json" : Difference(run.job, job_);
        const std::string option = earlier_ == Earlier::Part    ? "--part"
                                   : earlier_ == Earlier::Merge ? "merge"
                                                                : "--resume";
        if (!other.empty())
            throw UsageError(option + " goes on with the job in OUTDIR only, and this is another one: " +
                             other + "; use --overwrite to begin anew, or name another folder");
    }
    for (const auto& [tile, others] : run.tiles) {
        RequireNoSource(tile);
        for (const std::string& other : others) RequireNoSource(other);
    }
    for (const std::string& product : run.products) RequireNoSource(product);
    for (const std::string& index : run.indexes) RequireNoSource(index);
    return run;
}

/// A source that is a folder is read from the files in it.
void OutputFolder::RequireNoSource(const std::string& name) const {
    const fs::path file = fs::path(path_) / name;
    for (const std::string& source : keep_) {
        if (!SameFile(file, source) && !SameFile(path_, source)) continue;
        throw UsageError("--overwrite would remove " + Quoted(file.string()) +
                         ", which the source is read from; name another OUTDIR");
    }
}

std::map<std::string, std::vector<std::string>> OutputFolder::Prepare() {
    try {
        Make();
        TryToWrite();
        Lock();
        // Another run may have written or removed something meanwhile.
        const EarlierRun run = LookAtEarlier();
        if (earlier_ == Earlier::Merge) return {};
        std::map<std::string, std::vector<std::string>> there;
        if (earlier_ == Earlier::Resume || earlier_ == Earlier::Part) there = TakeUp(run);
        if (earlier_ == Earlier::Remove) RemoveAll(run);
        if (earlier_ != Earlier::Part) RemoveLeftovers(run);
        if (const auto failed = files::WriteWhole(path_ + "/" + kJobFile, TextOf(job_, 2) + "\n"))
            throw RunError("cannot write \"" + path_ + "/" + kJobFile + "\": " + failed.message());
        return there;
    } catch (...) {
        RemoveIfUnused();
        throw;
    }
}

void OutputFolder::Lock() {
    lock_ = std::make_unique<FolderLock>(path_);
    if (!(earlier_ == Earlier::Part ? lock_->TryTogether() : lock_->TryAlone()))
        throw UsageError("another run is writing into OUTDIR " + Quoted(path_) +
                         "; wait for its end, or name another folder");
    if (earlier_ != Earlier::Part) return;
    const std::string own = path_ + "/" + WorkFolderName(part_);
    std::error_code failed;
    fs::create_directory(own, failed);
    if (failed) throw RunError("cannot make the folder " + Quoted(own) + ": " + failed.message());
    partLock_ = std::make_unique<FolderLock>(own);
    if (!partLock_->TryAlone())
        throw UsageError("another run is at work on part " + std::to_string(part_.part) + " of " +
                         std::to_string(part_.parts) + " in OUTDIR " + Quoted(path_) + "; wait for its end");
}

/// The tiles of the run that are there. Its journal names them before its index goes.
std::map<std::string, std::vector<std::string>> OutputFolder::TakeUp(const EarlierRun& run) const {
    const OpenFolder folder(path_);
    const std::string extension = "." + job_["names"]["extension"].get<std::string>();
    const auto isThere = [&](const std::string& name) {
        std::error_code missing;
        const fs::path path = fs::path(path_) / name;
        return fs::is_regular_file(fs::symlink_status(path, missing)) && fs::file_size(path, missing) > 0;
    };
    std::map<std::string, std::vector<std::string>> there;
    for (const auto& [tile, others] : run.tiles) {
        if (tile.ends_with(extension) && isThere(tile) && std::ranges::all_of(others, isThere)) {
            there.emplace(tile, others);
            continue;
        }
        folder.Remove(tile);
        for (const std::string& other : others) folder.Remove(other);
    }
    if (run.IsThere()) WorkFolder::Renew(path_, part_, there);
    for (const std::string& record : run.records) folder.Remove(record);
    for (const std::string& product : run.products) folder.Remove(product);
    for (const std::string& index : run.indexes) folder.Remove(index);
    return there;
}

void OutputFolder::RemoveAll(const EarlierRun& run) const {
    const OpenFolder folder(path_);
    for (const auto& [tile, others] : run.tiles) {
        folder.Remove(tile);
        for (const std::string& other : others) folder.Remove(other);
    }
    for (const std::string& product : run.products) folder.Remove(product);
    for (const std::string& index : run.indexes) folder.Remove(index);
    for (const std::string& record : run.records) folder.Remove(record);
    folder.Remove(kJobFile);
}

void OutputFolder::Make() {
    std::vector<fs::path> missing;
    std::error_code ignored;
    for (fs::path folder = path_; !fs::exists(folder, ignored) && folder.has_relative_path();
         folder = folder.parent_path()) {
        missing.insert(missing.begin(), folder);
    }
    for (const fs::path& folder : missing) {
        std::error_code failed;
        if (fs::create_directory(folder, failed)) {
            made_.push_back(folder);
        } else if (failed) {
            throw UsageError("OUTDIR " + Quoted(path_) + " cannot be made: " + failed.message());
        }
    }
}

void OutputFolder::TryToWrite() const {
    std::string name = path_ + "/.orvo-tile-XXXXXX";
    const int file = mkostemp(name.data(), O_CLOEXEC);
    if (file < 0) {
        throw UsageError("OUTDIR " + Quoted(path_) + " cannot be written to: " + std::strerror(errno));
    }
    close(file);
    unlink(name.c_str());
}

/// The journal stays where its run goes on.
void OutputFolder::RemoveLeftovers(const EarlierRun& run) const {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(path_, ignored)) {
        const std::string name = entry.path().filename().string();
        const bool goesOn = earlier_ == Earlier::Resume && run.IsThere() && name == WorkFolderName();
        if (IsLeftover(name) && !goesOn) fs::remove_all(entry.path(), ignored);
    }
}

void OutputFolder::RemoveRecords(const std::vector<std::string>& records) const {
    const OpenFolder folder(path_);
    for (const std::string& record : records) folder.Remove(record);
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(path_, ignored)) {
        if (IsWorkFolderName(entry.path().filename().string())) fs::remove_all(entry.path(), ignored);
    }
}

void OutputFolder::RemoveJob() noexcept {
    if (earlier_ == Earlier::Part || earlier_ == Earlier::Merge) return;
    unlink((path_ + "/" + kJobFile).c_str());
}

void OutputFolder::RemoveIfUnused() noexcept {
    for (; !made_.empty(); made_.pop_back()) {
        if (rmdir(made_.back().c_str()) != 0) break;
    }
    made_.clear();
}

}  // namespace orvo::tiling
