#include "com/orvo_tile/Module.h"

#include <atomic>

#include "platform/RuntimeError.h"
#include "platform/windows/Platform.h"
#include "platform/windows/automation/HostObjects.h"

namespace orvo::com {
namespace {

std::atomic<long> uses{0};

}  // namespace

HMODULE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&uses), &module);
    return module;
}

std::wstring ModulePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(ThisModule(), path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) throw RuntimeError(Fault::PathNotFound, "Orvo_Tile.dll");
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

void UsePlatform() {
    static const bool installed = (platform::Install(windows::MakePlatform()), true);
    static_cast<void>(installed);
}

void ModuleUse::Lock() {
    ++uses;
}

void ModuleUse::Unlock() {
    --uses;
}

bool IsIdle() {
    return uses == 0 && windows::LiveObjects() == 0;
}

}  // namespace orvo::com
