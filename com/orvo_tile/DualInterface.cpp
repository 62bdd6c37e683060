#include "com/orvo_tile/DualInterface.h"

#include <mutex>
#include <utility>

#include "com/kit/Guarded.h"
#include "com/kit/Server.h"
#include "com/orvo_tile/CoercedArguments.h"

namespace orvo::com {
namespace {

using windows::Ref;

void Check(HRESULT code) {
    if (FAILED(code)) throw BadCall{code};
}

Parameter ParameterOf(const ELEMDESC& description) {
    Parameter made;
    int pointers = 0;
    const TYPEDESC* type = &description.tdesc;
    for (; type->vt == VT_PTR; type = type->lptdesc) ++pointers;
    made.type = type->vt;
    if (type->vt == VT_USERDEFINED) {  // an interface: one pointer belongs to the reference itself
        made.type = VT_DISPATCH;
        --pointers;
    }
    made.byReference = pointers > 0;
    made.optional = (description.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0;
    made.isResult = (description.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
    return made;
}

InterfaceFunction FunctionOf(const FUNCDESC& description) {
    InterfaceFunction made;
    made.id = description.memid;
    made.kind = description.invkind;
    made.slot = static_cast<ULONG_PTR>(description.oVft);
    for (SHORT i = 0; i < description.cParams; ++i)
        made.parameters.push_back(ParameterOf(description.lprgelemdescParam[i]));
    return made;
}

/// The description that names the places in the table of functions, which a dual interface keeps beside the
/// one for calls by name.
Ref<ITypeInfo> TableInfo(ITypeInfo* info) {
    HREFTYPE reference = 0;
    Check(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
    Ref<ITypeInfo> table;
    Check(info->GetRefTypeInfo(reference, table.Out()));
    return table;
}

std::vector<InterfaceFunction> FunctionsOf(ITypeInfo* table) {
    TYPEATTR* attributes = nullptr;
    Check(table->GetTypeAttr(&attributes));
    const UINT count = attributes->cFuncs;
    table->ReleaseTypeAttr(attributes);
    std::vector<InterfaceFunction> functions;
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* description = nullptr;
        Check(table->GetFuncDesc(i, &description));
        functions.push_back(FunctionOf(*description));
        table->ReleaseFuncDesc(description);
    }
    return functions;
}

/// What a failed function left behind, for the client's runtime.
void FillException(EXCEPINFO& exception, HRESULT code) {
    exception = {};
    exception.scode = code;
    Ref<IErrorInfo> info;
    if (GetErrorInfo(0, info.Out()) != S_OK) return;
    info->GetSource(&exception.bstrSource);
    info->GetDescription(&exception.bstrDescription);
}

struct Cache {
    std::mutex mutex;
    std::vector<std::pair<IID, std::shared_ptr<const DualInterface>>> interfaces;
};

/// Never destroyed: when a process ends, the system's libraries that own the entries may be gone already. A
/// DLL that is unloaded before calls ForgetDualInterfaces.
Cache& TheCache() {
    static Cache& cache = *new Cache;
    return cache;
}

}  // namespace

DualInterface::DualInterface(REFIID interfaceId) {
    Ref<ITypeLib> library;
    Check(LoadTypeLibEx(ServerPath().c_str(), REGKIND_NONE, library.Out()));
    Check(library->GetTypeInfoOfGuid(interfaceId, info_.Out()));
    functions_ = FunctionsOf(TableInfo(info_.Get()).Get());
}

const InterfaceFunction* DualInterface::Find(DISPID id, WORD flags) const {
    constexpr WORD puts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
    const InterfaceFunction* other = nullptr;
    for (const InterfaceFunction& function : functions_) {
        if (function.id != id) continue;
        if ((function.kind & flags) != 0) return &function;
        // Some clients put objects like values, and ask for a method like for a property.
        if ((function.kind & puts) != 0 && (flags & puts) != 0) other = &function;
        if (function.kind == INVOKE_FUNC && (flags & DISPATCH_PROPERTYGET) != 0) other = &function;
    }
    return other;
}

HRESULT DualInterface::Invoke(void* object, DISPID id, LCID locale, WORD flags, const DISPPARAMS& arguments,
                              VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) const {
    const InterfaceFunction* function = Find(id, flags);
    if (function == nullptr) return DISP_E_MEMBERNOTFOUND;
    CoercedArguments converted(*function, locale);
    HRESULT code = converted.Coerce(arguments, wrongArgument);
    if (FAILED(code)) return code;

    SetErrorInfo(0, nullptr);
    VARIANT returned;
    VariantInit(&returned);
    code = DispCallFunc(object, function->slot, CC_STDCALL, VT_ERROR, converted.Count(), converted.Types(),
                        converted.Values(), &returned);
    if (FAILED(code)) return code;
    if (FAILED(returned.scode)) {
        if (exception != nullptr) FillException(*exception, returned.scode);
        converted.WriteBack(
            nullptr);  // what it changed before; the function's failure is the one that counts
        return DISP_E_EXCEPTION;
    }
    return converted.WriteBack(result);
}

std::shared_ptr<const DualInterface> DualInterfaceOf(REFIID interfaceId) {
    Cache& cache = TheCache();
    const std::lock_guard lock(cache.mutex);
    for (const auto& [id, dispatch] : cache.interfaces)
        if (IsEqualIID(id, interfaceId)) return dispatch;
    return cache.interfaces.emplace_back(interfaceId, std::make_shared<const DualInterface>(interfaceId))
        .second;
}

void ForgetDualInterfaces() {
    Cache& cache = TheCache();
    const std::lock_guard lock(cache.mutex);
    cache.interfaces.clear();
}

}  // namespace orvo::com
