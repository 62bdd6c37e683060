#include <string_view>

#include "platform/RuntimeError.h"
#include "platform/files/PartFile.h"
#include "platform/windows/system/System.h"
#include "platform/windows/system/WideText.h"
#include "platform/windows/system/Win32.h"
#include "support/SystemPath.h"

namespace orvo::windows {
namespace {

Fault FaultOf(DWORD reason) {
    switch (reason) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_BAD_NETPATH:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_INVALID_DRIVE:
            return Fault::PathNotFound;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_WRITE_PROTECT:
            return Fault::PermissionDenied;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return Fault::DiskFull;
        default:
            return Fault::DeviceIOError;
    }
}

[[noreturn]] void Fail(const std::string& path, DWORD reason) {
    throw RuntimeError(FaultOf(reason), path + " (" + SystemText(reason) + ")");
}

constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// A file open for writing; what others may do with it meanwhile is its sharing.
class File {
  public:
    File(const std::string& path, DWORD disposition, DWORD sharing = kShared)
        : path_(path),
          handle_(::CreateFileW(Wide(path).c_str(), GENERIC_WRITE, sharing, nullptr, disposition,
                                FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (handle_ == INVALID_HANDLE_VALUE) Fail(path_, ::GetLastError());
    }
    ~File() { ::CloseHandle(handle_); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Waits for others that append; released by closing. The locked byte lies behind any text.
    void Lock() const {
        OVERLAPPED where{};
        where.OffsetHigh = 0x7FFFFFFF;
        ::LockFileEx(handle_, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &where);
    }
    void ToEnd() {
        LARGE_INTEGER end{};
        if (::SetFilePointerEx(handle_, {}, &end, FILE_END) == 0) Fail(path_, ::GetLastError());
        start_ = end;
    }
    /// The reason where not all of it could be written; then nothing of it stays.
    DWORD Write(std::string_view text) const {
        DWORD written = 0;
        const bool done =
            ::WriteFile(handle_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0;
        const DWORD reason = done ? static_cast<DWORD>(ERROR_DISK_FULL) : ::GetLastError();
        if (done && written == text.size()) return ERROR_SUCCESS;
        if (::SetFilePointerEx(handle_, start_, nullptr, FILE_BEGIN) != 0) ::SetEndOfFile(handle_);
        return reason;
    }
    /// Writes the text instead of all that is there.
    DWORD Overwrite(std::string_view text) const {
        const DWORD reason = Write(text);
        return reason != ERROR_SUCCESS || ::SetEndOfFile(handle_) != 0 ? reason : ::GetLastError();
    }

  private:
    std::string path_;
    HANDLE handle_;
    LARGE_INTEGER start_{};
};

}  // namespace

bool TextFiles::Exists(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesW(Wide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

void TextFiles::Append(const std::string& path, const std::string& text) {
    File file(path, OPEN_ALWAYS);
    file.Lock();
    file.ToEnd();
    const DWORD reason = file.Write(text);
    if (reason != ERROR_SUCCESS) Fail(path, reason);
}

void TextFiles::Replace(const std::string& path, const std::string& text) {
    const std::error_code failed = files::WriteWhole(DiskPath(path), text);
    if (!failed) return;
    auto reason = static_cast<DWORD>(failed.value());
    if (reason == ERROR_SHARING_VIOLATION || reason == ERROR_ACCESS_DENIED) {
        const File held(path, OPEN_ALWAYS);  // others have it open: they keep its name, not what it holds
        held.Lock();
        reason = held.Overwrite(text);
    }
    if (reason != ERROR_SUCCESS) Fail(path, reason);
}

}  // namespace orvo::windows
