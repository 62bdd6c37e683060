// The one registry value that the system has an answer to.
#pragma once

#include "platform/System.h"

namespace orvo::posix {

/// Knows the user's application-data folder alone: the value "AppData" of the shell folders, which is
/// XDG_DATA_HOME, else .local/share in the home folder. Codes as IRegistry gives them: 2 for what is missing,
/// 6 for a handle that is not open, 234 with the size needed for a buffer that is too small.
class Registry final : public IRegistry {
  public:
    Long RegOpenKey(Long hKey, const std::string& path, Long& handle) override;
    Long RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) override;
    Long RegCloseKey(Long handle) override;

  private:
    int opened_ = 0;  ///< how often the key is open
};

}  // namespace orvo::posix
