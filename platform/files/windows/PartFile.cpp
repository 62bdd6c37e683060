#include "platform/files/PartFile.h"

#include <windows.h>

#include <atomic>

#include "support/SystemPath.h"

namespace orvo::files {
namespace {

std::error_code LastError() {
    const DWORD reason = ::GetLastError();
    if (reason == ERROR_FILE_EXISTS || reason == ERROR_ALREADY_EXISTS)
        return std::make_error_code(std::errc::file_exists);
    return {static_cast<int>(reason), std::system_category()};
}

HANDLE Open(const std::filesystem::path& path, DWORD disposition) {
    return ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                         nullptr);
}

/// Unlike for every process that runs, and every file of this one.
std::string FreshName(const std::string& extension) {
    static std::atomic<unsigned> counter{0};
    LARGE_INTEGER ticks{};
    ::QueryPerformanceCounter(&ticks);
    return ".orvo-tile-" + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(++counter) + "-" +
           std::to_string(ticks.QuadPart) + extension;
}

}  // namespace

/// A file's readers are those of its folder.
PartFile::PartFile(const std::filesystem::path& folder, const std::string& extension, std::error_code& failed,
                   Readers /*readers*/) {
    const auto name = folder / DiskPath(FreshName(extension));
    const HANDLE file = Open(name, CREATE_NEW);
    failed = file == INVALID_HANDLE_VALUE ? LastError() : std::error_code();
    if (failed) return;
    path_ = name;
    ::CloseHandle(file);
}

/// Whoever needs the room keeps to a system that promises it.
std::error_code PartFile::Reserve(std::uintmax_t /*bytes*/) const {
    return {};
}

std::error_code PartFile::Write(std::string_view bytes) const {
    const HANDLE file = Open(path_, TRUNCATE_EXISTING);
    if (file == INVALID_HANDLE_VALUE) return LastError();
    DWORD written = 0;
    std::error_code failed;
    if (::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) == 0)
        failed = LastError();
    else if (written != bytes.size())
        failed = {ERROR_DISK_FULL, std::system_category()};
    if (::CloseHandle(file) == 0 && !failed) failed = LastError();
    return failed;
}

std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
    const BOOL moved = ::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING);
    return moved != 0 ? std::error_code() : LastError();
}

std::error_code MoveNew(const std::filesystem::path& from, const std::filesystem::path& to) {
    return ::MoveFileExW(from.c_str(), to.c_str(), 0) != 0 ? std::error_code() : LastError();
}

}  // namespace orvo::files
