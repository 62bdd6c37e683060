// The four functions that a server's DLL exports.
#include "com/kit/ClassFactory.h"
#include "com/kit/Guarded.h"
#include "com/kit/Registration.h"
#include "com/kit/Server.h"
#include "platform/windows/automation/Counted.h"

namespace com = orvo::com;

namespace {

constexpr IID kNoInterface{};
constexpr const wchar_t* kSource = L"Orvo_Tile";

}  // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    return com::Guarded(kNoInterface, kSource,
                        [&] { return com::GetClassObject(classId, interfaceId, object); });
}

STDAPI DllCanUnloadNow() {
    return com::Guarded(kNoInterface, kSource, [] {
        if (orvo::windows::ServerUse::Count() != 0) return S_FALSE;
        if (com::ThisServer().beforeUnloading != nullptr) com::ThisServer().beforeUnloading();
        return S_OK;
    });
}

STDAPI DllRegisterServer() {
    return com::Guarded(kNoInterface, kSource, com::Register);
}

STDAPI DllUnregisterServer() {
    return com::Guarded(kNoInterface, kSource, com::Unregister);
}
