#include "platform/gdal/CheckedFiles.h"

#include <cpl_vsi.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <set>

namespace orvo::gdal {

/// What is known of the files of one object. Its files are used on one thread at a time.
struct CheckedFiles::Record {
    std::string number;              ///< what its names begin with
    std::string failure;             ///< the first
    std::set<std::string> inMemory;  ///< paths of files that could not be made

    void Fail(int error) {
        if (failure.empty()) failure = std::strerror(error != 0 ? error : EIO);
    }
    std::string InMemory(const std::string& path) const { return "/vsimem/orvo-checked/" + number + path; }
    std::string Where(const std::string& path) const {
        return inMemory.contains(path) ? InMemory(path) : path;
    }
};

namespace {

constexpr const char* kPrefix = "/vsiorvochecked/";

using Record = CheckedFiles::Record;

/// All that live, by number.
class Registry {
  public:
    static Registry& Only() {
        static Registry registry;
        return registry;
    }
    std::shared_ptr<Record> Add() {
        const std::lock_guard lock(mutex_);
        auto record = std::make_shared<Record>();
        record->number = std::to_string(++last_);
        records_.emplace(record->number, record);
        return record;
    }
    void Remove(const std::string& number) {
        const std::lock_guard lock(mutex_);
        records_.erase(number);
    }
    std::shared_ptr<Record> Find(const std::string& number) {
        const std::lock_guard lock(mutex_);
        const auto found = records_.find(number);
        return found == records_.end() ? nullptr : found->second;
    }

  private:
    std::mutex mutex_;
    unsigned long last_ = 0;
    std::map<std::string, std::shared_ptr<Record>> records_;
};

/// "7/some/path" taken apart; the path begins with its slash.
struct Name {
    std::shared_ptr<Record> record;  ///< null for a name that nobody gave
    std::string path;

    explicit Name(const char* text) {
        const std::string whole(text);
        const auto slash = whole.find('/');
        if (slash == std::string::npos) return;
        record = Registry::Only().Find(whole.substr(0, slash));
        path = whole.substr(slash);
    }
    std::string Where() const { return record ? record->Where(path) : path; }
};

struct File {
    std::shared_ptr<Record> record;
    VSILFILE* file;
};

File& Of(void* file) {
    return *static_cast<File*>(file);
}

void* Open(void*, const char* text, const char* access) {
    const Name name(text);
    if (!name.record) return nullptr;
    errno = 0;
    VSILFILE* file = VSIFOpenL(name.Where().c_str(), access);
    const bool isRead = std::strpbrk(access, "wa+") == nullptr;
    if (file == nullptr && (isRead || (*access == 'r' && errno == ENOENT))) return nullptr;
    if (file == nullptr) {
        name.record->Fail(errno);
        name.record->inMemory.insert(name.path);
        file = VSIFOpenL(name.Where().c_str(), *access == 'r' ? "wb+" : access);
    }
    return file == nullptr ? nullptr : new File{name.record, file};
}

int Stat(void*, const char* name, VSIStatBufL* status, int flags) {
    return VSIStatExL(Name(name).Where().c_str(), status, flags);
}
int Unlink(void*, const char* name) {
    return VSIUnlink(Name(name).Where().c_str());
}
int Rename(void*, const char* from, const char* to) {
    const Name source(from), target(to);
    const int failed = VSIRename(source.Where().c_str(), target.Where().c_str());
    if (failed != 0 && source.record) source.record->Fail(errno);
    return failed;
}
int MakeFolder(void*, const char* name, long mode) {
    return VSIMkdir(Name(name).Where().c_str(), mode);
}
int RemoveFolder(void*, const char* name) {
    return VSIRmdir(Name(name).Where().c_str());
}
char** ReadFolder(void*, const char* name, int most) {
    return VSIReadDirEx(Name(name).Where().c_str(), most);
}

/// Files are buffered: any call may be the one that writes, and what was written before is lost with it.
class Watch {
  public:
    explicit Watch(Record& record) : record_(record) { errno = 0; }
    ~Watch() {
        for (const int lost : {ENOSPC, EFBIG, EDQUOT, EIO})
            if (errno == lost) record_.Fail(lost);
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    int Note(int failed) const {
        if (failed != 0) record_.Fail(errno);
        return failed;
    }

  private:
    Record& record_;
};

vsi_l_offset Tell(void* file) {
    return VSIFTellL(Of(file).file);
}
int Seek(void* file, vsi_l_offset offset, int whence) {
    const Watch watch(*Of(file).record);
    return VSIFSeekL(Of(file).file, offset, whence);
}
size_t Read(void* file, void* bytes, size_t size, size_t count) {
    const Watch watch(*Of(file).record);
    return VSIFReadL(bytes, size, count, Of(file).file);
}
int IsAtEnd(void* file) {
    return VSIFEofL(Of(file).file);
}
size_t Write(void* file, const void* bytes, size_t size, size_t count) {
    const Watch watch(*Of(file).record);
    const size_t written = VSIFWriteL(bytes, size, count, Of(file).file);
    static_cast<void>(watch.Note(written == count ? 0 : -1));
    return written;
}
int Flush(void* file) {
    const Watch watch(*Of(file).record);
    return watch.Note(VSIFFlushL(Of(file).file));
}
int Truncate(void* file, vsi_l_offset size) {
    const Watch watch(*Of(file).record);
    return watch.Note(VSIFTruncateL(Of(file).file, size));
}
int Close(void* file) {
    const std::unique_ptr<File> owned(static_cast<File*>(file));
    const Watch watch(*owned->record);
    return watch.Note(VSIFCloseL(owned->file));
}

void Install() {
    static std::once_flag once;
    std::call_once(once, [] {
        auto* const calls = VSIAllocFilesystemPluginCallbacksStruct();
        calls->open = Open;
        calls->stat = Stat;
        calls->unlink = Unlink;
        calls->rename = Rename;
        calls->mkdir = MakeFolder;
        calls->rmdir = RemoveFolder;
        calls->read_dir = ReadFolder;
        calls->tell = Tell;
        calls->seek = Seek;
        calls->read = Read;
        calls->eof = IsAtEnd;
        calls->write = Write;
        calls->flush = Flush;
        calls->truncate = Truncate;
        calls->close = Close;
        VSIInstallPluginHandler(kPrefix, calls);
        VSIFreeFilesystemPluginCallbacksStruct(calls);
    });
}

}  // namespace

CheckedFiles::CheckedFiles() : record_(Registry::Only().Add()) {
    Install();
    prefix_ = kPrefix + record_->number;
}

CheckedFiles::~CheckedFiles() {
    for (const std::string& path : record_->inMemory) VSIUnlink(record_->InMemory(path).c_str());
    Registry::Only().Remove(record_->number);
}

std::string CheckedFiles::Failure() const {
    return record_->failure;
}

std::string CheckedFiles::WithPaths(std::string text) const {
    for (std::size_t at = text.find(prefix_ + "/"); at != std::string::npos; at = text.find(prefix_ + "/"))
        text.erase(at, prefix_.size());
    return text;
}

}  // namespace orvo::gdal
