// What every object with a dual interface does alike: identity, calls by name, error information.
#pragma once

#include "com/kit/Guarded.h"
#include "com/orvo_tile/DualInterface.h"
#include "com/orvo_tile/Interfaces.h"
#include "platform/windows/automation/Counted.h"

namespace orvo::com {

template <class Interface>
class DualObject : public windows::Counted<Interface, ISupportErrorInfo> {
  public:
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) ||
            IsEqualIID(id, __uuidof(Interface)))
            *object = static_cast<Interface*>(this);
        else if (IsEqualIID(id, IID_ISupportErrorInfo))
            *object = static_cast<ISupportErrorInfo*>(this);
        else
            return E_NOINTERFACE;
        this->AddRef();
        return S_OK;
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 1;
        return S_OK;
    }

    STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        return Plainly([&] {
            Checked(info) = nullptr;
            if (index != 0) return DISP_E_BADINDEX;
            *info = DualInterfaceOf(__uuidof(Interface))->TypeInfo();
            (*info)->AddRef();
            return S_OK;
        });
    }

    STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        return Plainly([&] {
            if (!IsEqualIID(id, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
            return DispGetIDsOfNames(DualInterfaceOf(__uuidof(Interface))->TypeInfo(), names, count, ids);
        });
    }

    STDMETHODIMP Invoke(DISPID function, REFIID id, LCID locale, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override {
        return Plainly([&] {
            if (!IsEqualIID(id, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
            const windows::Ref<IUnknown> alive(static_cast<Interface*>(this));
            return DualInterfaceOf(__uuidof(Interface))
                ->Invoke(static_cast<Interface*>(this), function, locale, flags, Checked(arguments), result,
                         exception, wrongArgument);
        });
    }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override {
        return IsEqualIID(id, __uuidof(Interface)) ? S_OK : S_FALSE;
    }

  protected:
    /// @param source how the class names itself in error information; not copied
    explicit DualObject(const wchar_t* source) : source_(source) {}

    /// A member's body: its failure becomes the call's. The object outlives the call, whatever the client's
    /// own objects let go of meanwhile.
    template <class Body>
    HRESULT Do(Body&& body) noexcept {
        const windows::Ref<IUnknown> alive(static_cast<Interface*>(this));
        SetErrorInfo(0, nullptr);  // a failure without a text must not show that of an earlier one
        return Guarded(__uuidof(Interface), source_, body);
    }

  private:
    template <class Body>
    HRESULT Plainly(Body&& body) const noexcept {
        return Guarded(IID_IDispatch, source_, body);
    }

    const wchar_t* source_;
};

}  // namespace orvo::com
