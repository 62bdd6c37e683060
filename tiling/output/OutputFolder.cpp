#include "tiling/output/OutputFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string_view>
#include <system_error>

#include "tiling/Errors.h"
#include "tiling/Paths.h"
#include "tiling/output/TileIndex.h"

namespace fs = std::filesystem;

namespace orvo::tiling {
namespace {

std::string Quoted(const std::string& path) {
    return "\"" + path + "\"";
}

/// A folder that is open; names in it are looked up without following links.
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

    bool IsRegularFile(const std::string& name) const {
        struct stat status {};
        return fstatat(number_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode);
    }
    /// Removes a regular file; anything else stays.
    void Remove(const std::string& name) const {
        if (IsRegularFile(name) && unlinkat(number_, name.c_str(), 0) != 0 && errno != ENOENT) {
            throw RunError("cannot remove " + Quoted(name) + " of an earlier run: " + std::strerror(errno));
        }
    }

  private:
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

void OutputFolder::CheckEarlier(bool overwrite, const std::vector<std::string>& keep) {
    overwrite_ = overwrite;
    keep_ = keep;
    static_cast<void>(EarlierFiles());
}

std::vector<std::string> OutputFolder::EarlierFiles() const {
    const std::vector<std::string> indexes = FindIndexes(path_);
    if (indexes.empty()) return {};
    if (!overwrite_) {
        throw UsageError("OUTDIR " + Quoted(path_) + " holds tiles already (" + indexes.front() +
                         "); use --overwrite to replace them, or name another folder");
    }
    std::set<std::string> names;
    for (const std::string& index : indexes) {
        for (const std::string& name : FilesOfIndex(path_, index)) names.insert(name);
    }
    std::vector<std::string> files(names.begin(), names.end());
    files.insert(files.end(), indexes.begin(), indexes.end());
    for (const std::string& name : files) RequireNoSource(name);
    return files;
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

void OutputFolder::Prepare() {
    try {
        Make();
        TryToWrite();
        lock_ = std::make_unique<FolderLock>(path_);
        if (overwrite_) RemoveEarlier();
        lock_->Share();
    } catch (...) {
        RemoveIfUnused();
        throw;
    }
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

/// What is there is looked at once more: another run may have written or removed it meanwhile.
void OutputFolder::RemoveEarlier() {
    if (!lock_->TryAlone()) {
        throw UsageError("another run is writing into OUTDIR " + Quoted(path_) +
                         "; wait for its end before you use --overwrite, or name another folder");
    }
    const std::vector<std::string> files = EarlierFiles();
    const OpenFolder folder(path_);
    for (const std::string& name : files) folder.Remove(name);
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(path_, ignored)) {
        if (IsLeftover(entry.path().filename().string())) fs::remove_all(entry.path(), ignored);
    }
}

void OutputFolder::RemoveIfUnused() noexcept {
    for (; !made_.empty(); made_.pop_back()) {
        if (rmdir(made_.back().c_str()) != 0) break;
    }
    made_.clear();
}

}  // namespace orvo::tiling
