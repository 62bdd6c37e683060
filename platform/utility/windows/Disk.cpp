#include "platform/utility/Disk.h"

#include <windows.h>

#include "support/SystemPath.h"

namespace orvo::utility {
namespace {

constexpr int kAttempts = 100;

std::error_code LastError() {
    const DWORD reason = ::GetLastError();
    if (reason == ERROR_FILE_EXISTS || reason == ERROR_ALREADY_EXISTS)
        return std::make_error_code(std::errc::file_exists);
    return {static_cast<int>(reason), std::system_category()};
}

}  // namespace

std::error_code CreateMark(const std::string& mark, const std::string& /*like*/) {
    const HANDLE file = ::CreateFileW(DiskPath(mark).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_HIDDEN, nullptr);
    if (file == INVALID_HANDLE_VALUE) return LastError();
    ::CloseHandle(file);
    return {};
}

std::error_code CreateWorkFolder(const std::filesystem::path& parent, std::filesystem::path& folder) {
    LARGE_INTEGER ticks{};
    ::QueryPerformanceCounter(&ticks);
    std::error_code failed;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        folder = parent / (".convert-" + std::to_string(::GetCurrentProcessId()) + "-" +
                           std::to_string(ticks.QuadPart + attempt));
        if (::CreateDirectoryW(folder.c_str(), nullptr) != 0) {
            ::SetFileAttributesW(folder.c_str(), FILE_ATTRIBUTE_HIDDEN);
            return {};
        }
        failed = LastError();
        if (failed != std::errc::file_exists) break;
    }
    return failed;
}

std::string SignalName(int signal) {
    return std::to_string(signal);
}

}  // namespace orvo::utility
