// A COM server in a DLL, as it describes itself to the kit.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/windows/system/Win32.h"

namespace orvo::com {

/// A class that clients create by name.
struct CreatableClass {
    CLSID id;
    const wchar_t* progId;
    const wchar_t* description;
    /// A new object; the caller owns the reference that it starts with.
    IUnknown* (*create)();
};

/// An interface that the system marshals as the type library describes it.
struct DescribedInterface {
    IID id;
    const wchar_t* name;
};

/// The type library among the DLL's resources.
struct TypeLibrary {
    GUID id;
    const wchar_t* version;  ///< "MAJOR.MINOR"
    const wchar_t* description;
    std::vector<DescribedInterface> interfaces;
};

struct Server {
    std::vector<CreatableClass> classes;
    std::optional<TypeLibrary> typeLibrary{};
    /// Lets go of what the process's end would not; called whenever the DLL may be unloaded. Null for
    /// nothing.
    void (*beforeUnloading)() = nullptr;
};

/// Defined by each DLL, and the same on every call.
const Server& ThisServer();

/// The DLL's full path.
std::wstring ServerPath();

}  // namespace orvo::com
