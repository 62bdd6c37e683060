// A registry in one text file.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/System.h"
#include "platform/posix/RegistryText.h"

namespace orvo::posix {

/// Reads the file on first use and never again; a missing file is an empty registry. Where it does not name
/// the user's application-data folder ("AppData" of the shell folders), the system's data folder stands for
/// it.
class RegistryFile final : public IRegistry {
  public:
    explicit RegistryFile(std::string path = DefaultPath()) : path_(std::move(path)) {}

    /// orvo_tile/registry.reg in the user's configuration folder.
    static std::string DefaultPath();

    Long RegOpenKey(Long hKey, const std::string& path, Long& handle) override;
    /// A buffer that is too small gives 234 and the size needed, and stays as it is.
    Long RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) override;
    Long RegCloseKey(Long handle) override;

  private:
    const RegistryKeys& Keys();
    /// The folded path of a hive or an open key.
    std::optional<std::string> PathOf(Long handle) const;

    std::string path_;
    std::optional<RegistryKeys> keys_;
    std::map<Long, std::string> open_;
    Long lastHandle_ = 0;
};

}  // namespace orvo::posix
