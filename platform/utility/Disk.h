// What the library asks of the disk beyond the standard library; one source file per system.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace orvo::utility {

/// Makes an empty hidden file; std::errc::file_exists where one of that name is there, made by whomever. No
/// two processes succeed for one name.
/// @param like a file made the same way, which may be gone; empty for none. A second name for it may be
/// cheaper than a new file.
std::error_code CreateMark(const std::string& mark, const std::string& like);

/// Makes a hidden folder of this process alone inside `parent`.
std::error_code CreateWorkFolder(const std::filesystem::path& parent, std::filesystem::path& folder);

/// What the system calls a signal that ended a program.
std::string SignalName(int signal);

}  // namespace orvo::utility
