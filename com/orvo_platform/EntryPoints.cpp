// The four functions that the DLL exports.
#include "com/orvo_platform/Classes.h"
#include "com/orvo_platform/Registration.h"
#include "platform/windows/automation/Automation.h"
#include "platform/windows/automation/HostObjects.h"

namespace windows = orvo::windows;

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    return windows::Guarded([&] { return windows::GetClassObject(classId, interfaceId, object); });
}

STDAPI DllCanUnloadNow() {
    return windows::Guarded(
        [] { return windows::LiveObjects() == 0 && !windows::IsLocked() ? S_OK : S_FALSE; });
}

STDAPI DllRegisterServer() {
    return windows::Guarded([] { return windows::Register(); });
}

STDAPI DllUnregisterServer() {
    return windows::Guarded([] { return windows::Unregister(); });
}
