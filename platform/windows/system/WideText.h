// UTF-8 of the component and UTF-16 of the system.
#pragma once

#include <string>
#include <string_view>

namespace orvo::windows {

std::wstring Wide(std::string_view utf8);
std::string Utf8(std::wstring_view wide);

/// The value of an environment variable; empty where there is none.
std::wstring Environment(const wchar_t* name);

/// The system's text of an error code, without the line end.
std::string SystemText(unsigned long code);

}  // namespace orvo::windows
