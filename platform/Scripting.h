// The scripting runtime's dictionary and file-system object.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Geometry.h"

namespace orvo {

/// File name → envelope, in the order of adding; keys compare byte for byte.
class IDictionary {
  public:
    virtual ~IDictionary() = default;
    virtual Long Count() const = 0;
    virtual bool Exists(const std::string& key) const = 0;
    /// Adds an entry and holds a reference to the item; a key that is there already fails with number 457.
    virtual void Add(const std::string& key, std::shared_ptr<IEnvelope> item) = 0;
    /// The item of a key; an empty reference where the key is missing.
    virtual std::shared_ptr<IEnvelope> Item(const std::string& key) const = 0;
    virtual std::vector<std::string> Keys() const = 0;
};

/// Names and files. Takes "\" and "/" for separators alike; texts come back as they were given.
class IFileSystemObject {
  public:
    virtual ~IFileSystemObject() = default;
    virtual bool FileExists(const std::string& path) = 0;
    virtual bool FolderExists(const std::string& path) = 0;
    /// The last component of a path, extension included.
    virtual std::string GetFileName(const std::string& path) = 0;
    /// The last component without its last extension.
    virtual std::string GetBaseName(const std::string& path) = 0;
    /// The text behind the last dot of the last component; empty where there is none.
    virtual std::string GetExtensionName(const std::string& path) = 0;
    /// Everything before the last component, without a trailing separator (a root keeps its own).
    virtual std::string GetParentFolderName(const std::string& path) = 0;
    /// The full path, resolved against the current folder.
    virtual std::string GetAbsolutePathName(const std::string& path) = 0;
    /// Deletes one file; `force` also a read-only one. Fails with 53 (missing) or 70 (refused).
    virtual void DeleteFile(const std::string& path, bool force) = 0;
};

}  // namespace orvo
