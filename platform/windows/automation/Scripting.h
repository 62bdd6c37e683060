// The scripting runtime's objects: the system's own.
#pragma once

#include "platform/Scripting.h"
#include "platform/windows/automation/Automation.h"

namespace orvo::windows {

/// A new dictionary of the system; its automation object is what clients see.
std::shared_ptr<IDictionary> NewDictionary();

/// The system's file-system object. Its wildcards cannot occur in names.
class FileSystemObject final : public IFileSystemObject {
  public:
    FileSystemObject();
    bool FileExists(const std::string& path) override;
    bool FolderExists(const std::string& path) override;
    std::string GetFileName(const std::string& path) override;
    std::string GetBaseName(const std::string& path) override;
    std::string GetExtensionName(const std::string& path) override;
    std::string GetParentFolderName(const std::string& path) override;
    std::string GetAbsolutePathName(const std::string& path) override;
    void DeleteFile(const std::string& path, bool force) override;

  private:
    Automation object_;
};

}  // namespace orvo::windows
