#include "platform/windows/system/System.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "platform/windows/system/WideText.h"
#include "platform/windows/system/Win32.h"

namespace orvo::windows {
namespace {

constexpr DWORD kVersionRecord = 148;  // bytes
constexpr std::int64_t kTicksPerSecond = 10'000'000;

static_assert(sizeof(OSVERSIONINFOA) == kVersionRecord);

/// A text in the system's ANSI code page.
std::string Ansi(const std::string& utf8) {
    const std::wstring wide = Wide(utf8);
    const int size = static_cast<int>(wide.size());
    const int length = ::WideCharToMultiByte(CP_ACP, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string ansi(static_cast<std::size_t>(length), '\0');
    ::WideCharToMultiByte(CP_ACP, 0, wide.data(), size, ansi.data(), length, nullptr, nullptr);
    return ansi;
}

std::string FromAnsi(const std::string& ansi) {
    const int size = static_cast<int>(ansi.size());
    std::wstring wide(
        static_cast<std::size_t>(::MultiByteToWideChar(CP_ACP, 0, ansi.data(), size, nullptr, 0)), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, ansi.data(), size, wide.data(), static_cast<int>(wide.size()));
    return Utf8(wide);
}

/// The system keeps all that matters of a key's handle in 32 bits, sign extended.
HKEY KeyOf(Long handle) {
    return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(handle));
}

}  // namespace

Long Registry::RegOpenKey(Long hKey, const std::string& path, Long& handle) {
    HKEY opened = nullptr;
    const LONG result = ::RegOpenKeyA(KeyOf(hKey), Ansi(path).c_str(), &opened);
    if (result == ERROR_SUCCESS) handle = static_cast<Long>(reinterpret_cast<LONG_PTR>(opened));
    return result;
}

Long Registry::RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) {
    const std::string key = Ansi(name);
    DWORD kind = 0;
    DWORD bytes = 0;
    LONG result = ::RegQueryValueExA(KeyOf(hKey), key.c_str(), nullptr, &kind, nullptr, &bytes);
    std::string value(bytes, '\0');
    if (result == ERROR_SUCCESS && bytes > 0) {
        result = ::RegQueryValueExA(KeyOf(hKey), key.c_str(), nullptr, &kind,
                                    reinterpret_cast<BYTE*>(value.data()), &bytes);
        value.resize(bytes);
    }
    if (result != ERROR_SUCCESS) return result;
    if (kind == REG_SZ) value = FromAnsi(value);
    const Long room = size;
    type = static_cast<Long>(kind);
    size = static_cast<Long>(value.size());
    if (data == nullptr) return ERROR_SUCCESS;
    if (room < size) return ERROR_MORE_DATA;
    std::copy(value.begin(), value.end(), data);
    return ERROR_SUCCESS;
}

Long Registry::RegCloseKey(Long handle) {
    return ::RegCloseKey(KeyOf(handle));
}

std::int64_t Clock::Seconds() {
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    const std::int64_t ticks = static_cast<std::int64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
    return ticks / kTicksPerSecond;
}

LocalTime Clock::Local(std::int64_t seconds) {
    const std::int64_t ticks = seconds * kTicksPerSecond;
    const FILETIME time{static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME utc{}, local{};
    if (::FileTimeToSystemTime(&time, &utc) == 0) return {};
    if (::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) == 0) return {};
    return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

OSVersion OperatingSystem::GetVersion() {
    OSVERSIONINFOA record{};
    record.dwOSVersionInfoSize = kVersionRecord;
    if (::GetVersionExA(&record) == 0) return {};
    OSVersion version;
    version.major = static_cast<Long>(record.dwMajorVersion);
    version.minor = static_cast<Long>(record.dwMinorVersion);
    version.build = static_cast<Long>(record.dwBuildNumber);
    version.platformId = static_cast<Long>(record.dwPlatformId);
    version.servicePack = FromAnsi(record.szCSDVersion);
    return version;
}

std::string OperatingSystem::TempFolder() {
    return Utf8(Environment(L"TEMP"));
}

}  // namespace orvo::windows
