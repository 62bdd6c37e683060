// The four functions that the DLL exports.
#include "com/orvo_tile/Call.h"
#include "com/orvo_tile/ClassFactory.h"
#include "com/orvo_tile/Dispatch.h"
#include "com/orvo_tile/Module.h"
#include "com/orvo_tile/Registration.h"

namespace com = orvo::com;

namespace {

/// A body that answers with a code of its own.
template <class Body>
HRESULT Answer(Body&& body) noexcept {
    HRESULT answer = E_FAIL;
    const HRESULT code = com::Call(IID_NULL, L"Orvo_Tile", [&] { answer = body(); });
    return FAILED(code) ? code : answer;
}

}  // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    return Answer([&] { return com::GetClassObject(classId, interfaceId, object); });
}

STDAPI DllCanUnloadNow() {
    return Answer([] {
        if (!com::IsIdle()) return S_FALSE;
        com::ForgetDispatch();
        return S_OK;
    });
}

STDAPI DllRegisterServer() {
    return Answer([] { return com::Register(); });
}

STDAPI DllUnregisterServer() {
    return Answer([] { return com::Unregister(); });
}
