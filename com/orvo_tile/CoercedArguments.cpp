#include "com/orvo_tile/CoercedArguments.h"

#include <cstring>

namespace orvo::com {
namespace {

/// Where a variant of that type keeps its value.
void* StorageOf(VARIANT& value) {
    return &value.llVal;
}

bool IsLeftOut(const VARIANT& given) {
    return given.vt == VT_ERROR && given.scode == DISP_E_PARAMNOTFOUND;
}

bool IsSame(const VARIANT& one, const VARIANT& other, VARTYPE type) {
    switch (type) {
        case VT_BSTR:
            return VarBstrCmp(one.bstrVal, other.bstrVal, LOCALE_INVARIANT, 0) == VARCMP_EQ;
        case VT_DISPATCH:
            return one.pdispVal == other.pdispVal;
        case VT_I2:
        case VT_BOOL:
            return one.iVal == other.iVal;
        default:
            return one.lVal == other.lVal;
    }
}

/// The bytes of a variable of a fixed type; 0 where values cannot be put into such a variable.
std::size_t SizeOf(VARTYPE type) {
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
            return 4;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
        case VT_CY:
        case VT_DATE:
            return 8;
        case VT_DECIMAL:
            return sizeof(DECIMAL);
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return sizeof(void*);
        default:
            return 0;
    }
}

/// The argument that names the client's variable; one that is itself handed on stands a level deeper.
const VARIANT& Followed(const VARIANT& given) {
    const bool handedOn = given.vt == (VT_BYREF | VT_VARIANT) && (given.pvarVal->vt & VT_BYREF) != 0;
    return handedOn ? *given.pvarVal : given;
}

/// Whether a changed value finds a place; values and whole variants always do.
bool IsStorable(const VARIANT& given) {
    const VARIANT& variable = Followed(given);
    if ((variable.vt & VT_BYREF) == 0 || variable.vt == (VT_BYREF | VT_VARIANT)) return true;
    return SizeOf(static_cast<VARTYPE>(variable.vt & ~VT_BYREF)) != 0;
}

/// Puts a value into a client's variable of a fixed type.
HRESULT StoreAs(VARTYPE type, void* variable, VARIANT& value, LCID locale) {
    VARIANT converted;
    VariantInit(&converted);
    const HRESULT code = VariantChangeTypeEx(&converted, &value, locale, 0, type);
    if (FAILED(code)) return code;
    if (type == VT_DECIMAL) {  // fills the whole variant, and may lie in one of the client's: its type stays
        converted.decVal.wReserved = static_cast<DECIMAL*>(variable)->wReserved;
        std::memcpy(variable, &converted.decVal, sizeof(DECIMAL));
        return S_OK;
    }
    VARIANT old;  // whose text or object the new one replaces
    VariantInit(&old);
    std::memcpy(StorageOf(old), variable, SizeOf(type));
    old.vt = type;
    std::memcpy(variable, StorageOf(converted), SizeOf(type));
    return VariantClear(&old);
}

}  // namespace

CoercedArguments::CoercedArguments(const InterfaceFunction& function, LCID locale)
    : function_(function),
      locale_(locale),
      slots_(function.parameters.size()),
      types_(function.parameters.size()),
      values_(function.parameters.size()) {}

CoercedArguments::~CoercedArguments() {
    for (Slot& slot : slots_) {
        VariantClear(&slot.value);
        VariantClear(&slot.before);
    }
}

HRESULT CoercedArguments::Coerce(const DISPPARAMS& arguments, UINT* wrongArgument) {
    std::size_t inputs = 0;
    for (const Parameter& parameter : function_.parameters) inputs += parameter.isResult ? 0 : 1;
    if (arguments.cArgs > inputs) return DISP_E_BADPARAMCOUNT;

    // The client's list runs backwards: named arguments first, the first by place last.
    for (UINT i = 0; i < arguments.cArgs; ++i) {
        std::size_t place = arguments.cArgs - 1 - i;
        if (i < arguments.cNamedArgs) {
            const DISPID name = arguments.rgdispidNamedArgs[i];
            place = name == DISPID_PROPERTYPUT ? inputs - 1 : static_cast<std::size_t>(name);
        }
        if (place >= inputs || slots_[place].source != nullptr) {
            if (wrongArgument != nullptr) *wrongArgument = i;
            return DISP_E_PARAMNOTFOUND;
        }
        slots_[place].source = &arguments.rgvarg[i];
    }
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        const HRESULT code = Convert(i);
        if (SUCCEEDED(code)) continue;
        if (wrongArgument != nullptr && slots_[i].source != nullptr)
            *wrongArgument = static_cast<UINT>(slots_[i].source - arguments.rgvarg);
        return code;
    }
    return S_OK;
}

HRESULT CoercedArguments::Convert(std::size_t index) {
    const Parameter& parameter = function_.parameters[index];
    Slot& slot = slots_[index];
    if (slot.source != nullptr) {
        VARIANT given;
        VariantInit(&given);
        HRESULT code = VariantCopyInd(&given, slot.source);
        if (FAILED(code)) return code;
        if (IsLeftOut(given)) {
            slot.source = nullptr;
        } else if (parameter.byReference && !IsStorable(*slot.source)) {
            code = DISP_E_TYPEMISMATCH;
        } else {
            code = parameter.type == VT_DISPATCH
                       ? ConvertObject(given, slot.value)
                       : VariantChangeTypeEx(&slot.value, &given, locale_, 0, parameter.type);
        }
        VariantClear(&given);
        if (FAILED(code)) return code;
    }
    if (slot.source == nullptr) {
        if (!parameter.optional && !parameter.isResult) return DISP_E_PARAMNOTOPTIONAL;
        slot.value.vt = parameter.type;  // 0, empty text or empty reference
    }
    types_[index] = parameter.type;
    values_[index] = &slot.value;
    if (!parameter.byReference) return S_OK;
    slot.passed.vt = static_cast<VARTYPE>(parameter.type | VT_BYREF);
    slot.passed.byref = StorageOf(slot.value);
    types_[index] = slot.passed.vt;
    values_[index] = &slot.passed;
    return VariantCopy(&slot.before, &slot.value);
}

/// Objects of any kind come as IDispatch; Nothing and null are the empty reference.
HRESULT CoercedArguments::ConvertObject(const VARIANT& given, VARIANT& value) const {
    value.pdispVal = nullptr;
    value.vt = VT_DISPATCH;
    if (given.vt == VT_NULL) return S_OK;
    if (given.vt != VT_DISPATCH && given.vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
    if (given.punkVal == nullptr) return S_OK;
    const HRESULT code =
        given.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&value.pdispVal));
    return FAILED(code) ? DISP_E_TYPEMISMATCH : S_OK;
}

HRESULT CoercedArguments::StoreChange(Slot& slot, const Parameter& parameter) const {
    if (!parameter.byReference || slot.source == nullptr) return S_OK;
    const VARIANT& target = Followed(*slot.source);
    if ((target.vt & VT_BYREF) == 0 || IsSame(slot.value, slot.before, parameter.type)) return S_OK;
    if (target.vt == (VT_BYREF | VT_VARIANT)) return VariantCopy(target.pvarVal, &slot.value);
    return StoreAs(static_cast<VARTYPE>(target.vt & ~VT_BYREF), target.byref, slot.value, locale_);
}

HRESULT CoercedArguments::WriteBack(VARIANT* result) {
    if (result != nullptr) VariantInit(result);
    HRESULT first = S_OK;
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        Slot& slot = slots_[i];
        const Parameter& parameter = function_.parameters[i];
        if (!parameter.isResult) {
            const HRESULT code = StoreChange(slot, parameter);
            if (SUCCEEDED(first)) first = code;
        } else if (result != nullptr && SUCCEEDED(first)) {
            *result = slot.value;
            VariantInit(&slot.value);
        }
    }
    return first;
}

}  // namespace orvo::com
