#include "platform/windows/automation/ScriptObject.h"

#include <algorithm>

#include "platform/FailureInFlight.h"

namespace orvo::windows {
namespace {

constexpr Long kWrongNumberOfArguments = 450;

/// Tells a caller of a failure: number and text.
HRESULT FillException(EXCEPINFO* exception, const RuntimeError& failure) {
    if (exception == nullptr) return DISP_E_EXCEPTION;
    *exception = {};
    exception->scode = CodeOf(failure.Number());
    exception->bstrDescription = Value(failure.Description()).Detach().bstrVal;
    exception->bstrSource = ::SysAllocString(L"OrvoPlatform");
    return DISP_E_EXCEPTION;
}

HRESULT Answer(const Member& member, WORD kind, const DISPPARAMS& parameters, VARIANT* result) {
    const Arguments arguments(parameters);
    if ((kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
        if (!member.put) return DISP_E_MEMBERNOTFOUND;
        member.put(arguments.At(0));
        return S_OK;
    }
    Value value = member.call(arguments);
    if (result != nullptr) *result = value.Detach();
    return S_OK;
}

}  // namespace

Arguments::Arguments(const DISPPARAMS& parameters) {
    for (UINT i = parameters.cArgs; i > 0; --i) {
        given_.push_back(&parameters.rgvarg[i - 1]);
        values_.push_back(Value::Copy(parameters.rgvarg[i - 1]));
    }
}

const Value& Arguments::At(std::size_t index) const {
    if (index >= values_.size())
        throw RuntimeError(kWrongNumberOfArguments,
                           "Wrong number of arguments or invalid property assignment");
    return values_[index];
}

void Arguments::WriteBack(std::size_t index, const Value& value) const {
    VARIANT& given = *given_.at(index);
    if (given.vt == (VT_BYREF | VT_VARIANT)) {
        VARIANT source = value.Raw();
        Require(::VariantCopy(given.pvarVal, &source), "an argument");
    } else if (given.vt == (VT_BYREF | VT_BSTR)) {
        Value copy = value;
        ::SysFreeString(*given.pbstrVal);
        *given.pbstrVal = copy.Detach().bstrVal;
    }
}

HRESULT ScriptObject::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    const bool known = ::IsEqualIID(id, IID_IUnknown) || ::IsEqualIID(id, IID_IDispatch);
    *object = known ? static_cast<IDispatch*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT ScriptObject::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT ScriptObject::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) {
    if (info != nullptr) *info = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT ScriptObject::GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                    DISPID* ids) {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    std::fill(ids, ids + count, DISPID_UNKNOWN);
    const auto found = std::ranges::find_if(members_, [&](const Member& member) {
        return ::CompareStringOrdinal(member.name, -1, names[0], -1, TRUE) == CSTR_EQUAL;
    });
    if (found == members_.end()) return DISP_E_UNKNOWNNAME;
    ids[0] = found->id == DISPID_UNKNOWN ? static_cast<DISPID>(found - members_.begin()) + 1 : found->id;
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;  // arguments have no names
}

const Member* ScriptObject::Find(DISPID id) const {
    for (std::size_t i = 0; i < members_.size(); ++i) {
        const DISPID own = members_[i].id;
        if (id == (own == DISPID_UNKNOWN ? static_cast<DISPID>(i) + 1 : own)) return &members_[i];
    }
    return nullptr;
}

HRESULT ScriptObject::Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD kind,
                             DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                             UINT* /*argument*/) {
    if (parameters == nullptr) return E_INVALIDARG;
    const Member* const member = Find(id);
    if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
    const Ref<ScriptObject> alive(this);
    return Guarded([&] {
        try {
            return Answer(*member, kind, *parameters, result);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (...) {
            return FillException(exception, FailureInFlight());
        }
    });
}

}  // namespace orvo::windows
