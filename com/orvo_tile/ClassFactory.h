// The creatable classes and their factories.
#pragma once

#include <array>

#include "com/orvo_tile/Automation.h"

namespace orvo::com {

struct CreatableClass {
    CLSID id;
    const wchar_t* progId;
    const wchar_t* description;
    /// A new object that holds one reference.
    IUnknown* (*create)();
};

const std::array<CreatableClass, 2>& CreatableClasses();

/// The factory of a class; CLASS_E_CLASSNOTAVAILABLE for any other.
HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object);

}  // namespace orvo::com
