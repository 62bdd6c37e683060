// Calls by name: the members of one dual interface, as the type library describes them.
#pragma once

#include <memory>
#include <vector>

#include "com/orvo_tile/Interfaces.h"
#include "platform/windows/automation/Automation.h"

namespace orvo::com {

/// A formal parameter.
struct Parameter {
    VARTYPE type = VT_EMPTY;  ///< VT_DISPATCH for every kind of object
    bool byReference = false;
    bool optional = false;
    bool isResult = false;
};

/// One way to use a member: a method, or one kind of access to a property.
struct InterfaceFunction {
    DISPID id = 0;
    INVOKEKIND kind = INVOKE_FUNC;
    ULONG_PTR slot = 0;  ///< offset in the interface's table of functions, in bytes
    std::vector<Parameter> parameters;
};

/// The members of one interface. Arguments are converted to the declared types, and variables handed over by
/// reference get back what the member made of them, in the type that they have.
class DualInterface {
  public:
    /// Fails with BadCall where the type library in the DLL cannot be read.
    explicit DualInterface(REFIID interfaceId);

    ITypeInfo* TypeInfo() const { return info_.Get(); }
    /// @param object the interface that this describes
    HRESULT Invoke(void* object, DISPID id, LCID locale, WORD flags, const DISPPARAMS& arguments,
                   VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) const;

  private:
    const InterfaceFunction* Find(DISPID id, WORD flags) const;

    windows::Ref<ITypeInfo> info_;
    std::vector<InterfaceFunction> functions_;
};

/// The interface's members, read on first use and kept until ForgetDualInterfaces.
std::shared_ptr<const DualInterface> DualInterfaceOf(REFIID interfaceId);
/// Lets go of the type library; for a DLL that is about to be unloaded.
void ForgetDualInterfaces();

}  // namespace orvo::com
