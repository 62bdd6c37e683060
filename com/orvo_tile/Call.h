// From C++ to COM: failures as HRESULTs with error information, texts as BSTRs.
#pragma once

#include <string>

#include "com/orvo_tile/Automation.h"
#include "platform/windows/automation/Automation.h"

namespace orvo::com {

using windows::Ref;

/// Turns the exception that is being handled into an HRESULT and the thread's error information. A runtime
/// failure's number n becomes 0x800A0000 + n, which scripts show as n; a platform's own HRESULT stays.
HRESULT FailureOf(REFIID interfaceId, const wchar_t* source) noexcept;

/// Runs a member's body. Nothing that it throws passes.
template <class Body>
HRESULT Call(REFIID interfaceId, const wchar_t* source, Body&& body) noexcept {
    try {
        body();
        return S_OK;
    } catch (...) {
        return FailureOf(interfaceId, source);
    }
}

/// Fails a call with a code of COM's own, without a text.
struct BadCall {
    HRESULT code;
};

/// A member's target for its result; E_POINTER where the client gave none.
template <class Value>
Value& Target(Value* pointer) {
    if (pointer == nullptr) throw BadCall{E_POINTER};
    return *pointer;
}

std::string TextOf(BSTR text);
/// An argument by reference; a null pointer stands for an argument left out, and is empty.
std::string TextOf(const BSTR* text);
/// The caller owns the result.
BSTR NewBstr(const std::string& text);

}  // namespace orvo::com
