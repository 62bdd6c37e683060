// The DLL as a whole: where it lies, whether it may go.
#pragma once

#include <string>

#include "com/orvo_tile/Automation.h"

namespace orvo::com {

/// The DLL's own handle.
HMODULE ThisModule();
/// The DLL's full path.
std::wstring ModulePath();
/// Installs the platform on the first call of the process.
void UsePlatform();

/// One reason for the DLL to stay loaded: an object, or a client's lock.
class ModuleUse {
  public:
    ModuleUse() { Lock(); }
    ~ModuleUse() { Unlock(); }
    ModuleUse(const ModuleUse&) = delete;
    ModuleUse& operator=(const ModuleUse&) = delete;

    static void Lock();
    static void Unlock();
};

/// No object of ours is held by anyone, and no lock.
bool IsIdle();

}  // namespace orvo::com
