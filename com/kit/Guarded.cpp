#include "com/kit/Guarded.h"

#include <new>

#include "platform/FailureInFlight.h"
#include "platform/windows/automation/Automation.h"
#include "platform/windows/system/WideText.h"

namespace orvo::com {
namespace {

using windows::Ref;

/// Leaves number, text and source where the client's runtime looks for them.
HRESULT Report(const RuntimeError& failure, REFIID interfaceId, const wchar_t* source) {
    const HRESULT code = windows::CodeOf(failure.Number());
    Ref<ICreateErrorInfo> made;
    if (FAILED(::CreateErrorInfo(made.Out()))) return code;
    std::wstring text = windows::Wide(failure.Description());
    std::wstring from = source;
    made->SetGUID(interfaceId);
    made->SetSource(from.data());
    made->SetDescription(text.data());
    const auto info = windows::Query<IErrorInfo>(made.Get(), IID_IErrorInfo);
    if (info) ::SetErrorInfo(0, info.Get());
    return code;
}

}  // namespace

HRESULT FailureOf(REFIID interfaceId, const wchar_t* source) noexcept {
    try {
        throw;
    } catch (const BadCall& failure) {
        return failure.code;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        try {
            return Report(FailureInFlight(), interfaceId, source);
        } catch (...) {
            return E_UNEXPECTED;
        }
    }
}

}  // namespace orvo::com
