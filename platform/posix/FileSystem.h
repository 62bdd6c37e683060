// The scripting runtime's file-system object on a POSIX disk.
#pragma once

#include <string>

#include "platform/Scripting.h"

namespace orvo::posix {

/// Splitting follows the runtime: trailing separators do not count, and a root ("/", "C:\") has neither name
/// nor parent. No character is a wildcard. Names keep their case.
class FileSystem final : public IFileSystemObject {
  public:
    bool FileExists(const std::string& path) override;
    bool FolderExists(const std::string& path) override;
    std::string GetFileName(const std::string& path) override;
    std::string GetBaseName(const std::string& path) override;
    std::string GetExtensionName(const std::string& path) override;
    std::string GetParentFolderName(const std::string& path) override;
    /// Resolves "." and ".." in the text alone; links are not followed. Separators stay as given.
    std::string GetAbsolutePathName(const std::string& path) override;
    /// A file whose owner may not write it counts as read-only.
    void DeleteFile(const std::string& path, bool force) override;
};

}  // namespace orvo::posix
