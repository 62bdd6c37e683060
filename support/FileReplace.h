// Writing files so that a name never holds half a file.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace orvo {

/// The temporary name beside `target` under which it is written: hidden, same extension, same folder.
std::filesystem::path PartName(const std::filesystem::path& target);

/// Renames the complete temporary file to its target, replacing one that is there. On failure the temporary
/// file is removed and the reason returned; empty on success.
std::string Commit(const std::filesystem::path& part, const std::filesystem::path& target);

/// Writes bytes under the temporary name, checks write, flush and close, and commits. On failure nothing is
/// left and the reason is returned; empty on success.
std::string ReplaceFile(const std::filesystem::path& target, std::span<const unsigned char> bytes);
std::string ReplaceFile(const std::filesystem::path& target, std::string_view text);

}  // namespace orvo
