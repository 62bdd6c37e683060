// From C++ to COM: what is thrown becomes an HRESULT with error information.
#pragma once

#include <type_traits>

#include "platform/windows/system/Win32.h"

namespace orvo::com {

/// Fails a call with a code of COM's own, without a text.
struct BadCall {
    HRESULT code;
};

/// Turns the exception that is being handled into an HRESULT and the thread's error information.
/// @param source how the class names itself to the client
HRESULT FailureOf(REFIID interfaceId, const wchar_t* source) noexcept;

/// Runs the body of a function that COM calls: nothing that it throws passes. A body without a result has
/// succeeded at its end.
template <class Body>
HRESULT Guarded(REFIID interfaceId, const wchar_t* source, Body&& body) noexcept {
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            return S_OK;
        } else {
            return body();
        }
    } catch (...) {
        return FailureOf(interfaceId, source);
    }
}

/// What a client's pointer points to; E_POINTER where it gave none.
template <class Value>
Value& Checked(Value* pointer) {
    if (pointer == nullptr) throw BadCall{E_POINTER};
    return *pointer;
}

}  // namespace orvo::com
