#include "com/orvo_tile/Call.h"

#include <exception>
#include <new>

#include "platform/RuntimeError.h"
#include "platform/windows/system/WideText.h"

namespace orvo::com {
namespace {

constexpr ULONG kRuntimeErrors = 0x800A0000U;  // where automation keeps the numbers of a runtime

HRESULT CodeOf(Long number) {
    if (number < 0) return number;
    return static_cast<HRESULT>(kRuntimeErrors | (static_cast<ULONG>(number) & 0xFFFFU));
}

/// Leaves number, text and source where the client's runtime looks for them.
HRESULT Report(HRESULT code, const char* description, REFIID interfaceId, const wchar_t* source) {
    Ref<ICreateErrorInfo> made;
    if (FAILED(CreateErrorInfo(made.Out()))) return code;
    std::wstring text = windows::Wide(description);
    std::wstring from = source;
    made->SetGUID(interfaceId);
    made->SetSource(from.data());
    made->SetDescription(text.data());
    Ref<IErrorInfo> info;
    if (SUCCEEDED(made->QueryInterface(IID_IErrorInfo, info.OutVoid()))) SetErrorInfo(0, info.Get());
    return code;
}

HRESULT Describe(REFIID interfaceId, const wchar_t* source) {
    try {
        throw;
    } catch (const BadCall& failure) {
        return failure.code;
    } catch (const RuntimeError& failure) {
        return Report(CodeOf(failure.Number()), failure.what(), interfaceId, source);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception& failure) {
        return Report(CodeOf(static_cast<Long>(Fault::AutomationError)), failure.what(), interfaceId, source);
    }
}

}  // namespace

HRESULT FailureOf(REFIID interfaceId, const wchar_t* source) noexcept {
    try {
        return Describe(interfaceId, source);
    } catch (...) {
        return E_UNEXPECTED;
    }
}

std::string TextOf(BSTR text) {
    return windows::Utf8({text, SysStringLen(text)});
}

std::string TextOf(const BSTR* text) {
    return text == nullptr ? std::string() : TextOf(*text);
}

BSTR NewBstr(const std::string& text) {
    const std::wstring wide = windows::Wide(text);
    BSTR made = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (made == nullptr) throw std::bad_alloc();
    return made;
}

}  // namespace orvo::com
