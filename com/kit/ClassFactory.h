// Factories of a server's classes.
#pragma once

#include "platform/windows/system/Win32.h"

namespace orvo::com {

/// A new factory of a class of this server; CLASS_E_CLASSNOTAVAILABLE for any other class.
HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object);

}  // namespace orvo::com
