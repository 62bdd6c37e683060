// The creatable classes and their factories.
#pragma once

#include <array>

#include "platform/windows/automation/ScriptObject.h"

namespace orvo::windows {

struct CreatableClass {
    CLSID id;
    const wchar_t* progId;
    const wchar_t* description;
    ScriptObject* (*create)();
};

const std::array<CreatableClass, 5>& CreatableClasses();

/// The factory of a class; CLASS_E_CLASSNOTAVAILABLE for any other.
HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object);

/// Whether a client holds the server by a lock.
bool IsLocked();

}  // namespace orvo::windows
