#include "platform/windows/system/WideText.h"

#include "platform/windows/system/Win32.h"

namespace orvo::windows {

std::wstring Wide(std::string_view utf8) {
    const int size = static_cast<int>(utf8.size());
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), length);
    return wide;
}

std::string Utf8(std::wstring_view wide) {
    const int size = static_cast<int>(wide.size());
    const int length = ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(length), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), length, nullptr, nullptr);
    return utf8;
}

std::wstring Environment(const wchar_t* name) {
    std::wstring value(::GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    value.resize(::GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

std::string SystemText(unsigned long code) {
    wchar_t buffer[512] = L"";
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                          code, 0, buffer, sizeof buffer / sizeof *buffer, nullptr);
    std::wstring_view text(buffer, length);
    while (!text.empty() && (text.back() <= L' ' || text.back() == L'.')) text.remove_suffix(1);
    if (text.empty()) return "error " + std::to_string(code);
    return Utf8(text);
}

}  // namespace orvo::windows
