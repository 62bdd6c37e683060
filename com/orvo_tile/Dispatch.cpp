#include "com/orvo_tile/Dispatch.h"

#include <mutex>
#include <utility>

#include "com/orvo_tile/Arguments.h"
#include "com/orvo_tile/Module.h"

namespace orvo::com {
namespace {

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

Member MemberOf(const FUNCDESC& description) {
    Member made;
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

std::vector<Member> MembersOf(ITypeInfo* table) {
    TYPEATTR* attributes = nullptr;
    Check(table->GetTypeAttr(&attributes));
    const UINT count = attributes->cFuncs;
    table->ReleaseTypeAttr(attributes);
    std::vector<Member> members;
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* description = nullptr;
        Check(table->GetFuncDesc(i, &description));
        members.push_back(MemberOf(*description));
        table->ReleaseFuncDesc(description);
    }
    return members;
}

/// What a failed member left behind, for the client's runtime.
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
    std::vector<std::pair<IID, std::shared_ptr<const Dispatch>>> interfaces;
};

/// Never destroyed: when a process ends, the system's libraries that own the entries may be gone already. A
/// DLL that is unloaded before calls ForgetDispatch.
Cache& TheCache() {
    static Cache& cache = *new Cache;
    return cache;
}

}  // namespace

Dispatch::Dispatch(REFIID interfaceId) {
    Ref<ITypeLib> library;
    Check(LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, library.Out()));
    Check(library->GetTypeInfoOfGuid(interfaceId, info_.Out()));
    members_ = MembersOf(TableInfo(info_.Get()).Get());
}

const Member* Dispatch::Find(DISPID id, WORD flags) const {
    constexpr WORD puts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
    const Member* other = nullptr;
    for (const Member& member : members_) {
        if (member.id != id) continue;
        if ((member.kind & flags) != 0) return &member;
        // Some clients put objects like values, and ask for a method like for a property.
        if ((member.kind & puts) != 0 && (flags & puts) != 0) other = &member;
        if (member.kind == INVOKE_FUNC && (flags & DISPATCH_PROPERTYGET) != 0) other = &member;
    }
    return other;
}

HRESULT Dispatch::Invoke(void* object, DISPID id, LCID locale, WORD flags, const DISPPARAMS& arguments,
                         VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) const {
    const Member* member = Find(id, flags);
    if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
    Arguments converted(*member, locale);
    HRESULT code = converted.Take(arguments, wrongArgument);
    if (FAILED(code)) return code;

    SetErrorInfo(0, nullptr);
    VARIANT returned;
    VariantInit(&returned);
    code = DispCallFunc(object, member->slot, CC_STDCALL, VT_ERROR, converted.Count(), converted.Types(),
                        converted.Values(), &returned);
    if (FAILED(code)) return code;
    if (FAILED(returned.scode)) {
        if (exception != nullptr) FillException(*exception, returned.scode);
        converted.GiveBack(nullptr);  // what it changed before; the member's failure is the one that counts
        return DISP_E_EXCEPTION;
    }
    return converted.GiveBack(result);
}

std::shared_ptr<const Dispatch> DispatchFor(REFIID interfaceId) {
    Cache& cache = TheCache();
    const std::lock_guard lock(cache.mutex);
    for (const auto& [id, dispatch] : cache.interfaces)
        if (IsEqualIID(id, interfaceId)) return dispatch;
    return cache.interfaces.emplace_back(interfaceId, std::make_shared<const Dispatch>(interfaceId)).second;
}

void ForgetDispatch() {
    Cache& cache = TheCache();
    const std::lock_guard lock(cache.mutex);
    cache.interfaces.clear();
}

}  // namespace orvo::com
