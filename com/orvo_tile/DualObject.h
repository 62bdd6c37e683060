// What every object with a dual interface does alike: identity, counting, calls by name, error information.
#pragma once

#include <new>

#include "com/orvo_tile/Automation.h"
#include "com/orvo_tile/Call.h"
#include "com/orvo_tile/Dispatch.h"
#include "com/orvo_tile/Module.h"

namespace orvo::com {

/// The base of an object that is made with `new`, holds one reference then and deletes itself with its last.
template <class Interface>
class DualObject : public Interface, public ISupportErrorInfo {
  public:
    DualObject(const DualObject&) = delete;
    DualObject& operator=(const DualObject&) = delete;

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
        AddRef();
        return S_OK;
    }

    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }

    STDMETHODIMP_(ULONG) Release() override {
        const long left = InterlockedDecrement(&references_);
        if (left != 0) return static_cast<ULONG>(left);
        references_ = kEnding;  // an end may show a dialog, in which a client may still count up and down
        delete this;
        return 0;
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 1;
        return S_OK;
    }

    STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        return Plainly([&] {
            Target(info) = nullptr;
            if (index != 0) throw BadCall{DISP_E_BADINDEX};
            *info = DispatchFor(__uuidof(Interface))->TypeInfo();
            (*info)->AddRef();
        });
    }

    STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        return Plainly([&] {
            if (!IsEqualIID(id, IID_NULL)) throw BadCall{DISP_E_UNKNOWNINTERFACE};
            const auto dispatch = DispatchFor(__uuidof(Interface));
            Answer(DispGetIDsOfNames(dispatch->TypeInfo(), names, count, ids));
        });
    }

    STDMETHODIMP Invoke(DISPID member, REFIID id, LCID locale, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override {
        return Plainly([&] {
            if (!IsEqualIID(id, IID_NULL)) throw BadCall{DISP_E_UNKNOWNINTERFACE};
            const auto dispatch = DispatchFor(__uuidof(Interface));
            const Ref<IUnknown> alive(static_cast<Interface*>(this));
            Answer(dispatch->Invoke(static_cast<Interface*>(this), member, locale, flags, Target(arguments),
                                    result, exception, wrongArgument));
        });
    }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override {
        return IsEqualIID(id, __uuidof(Interface)) ? S_OK : S_FALSE;
    }

  protected:
    /// @param source how the class names itself in error information; not copied
    explicit DualObject(const wchar_t* source) : source_(source) {}
    virtual ~DualObject() = default;

    /// A member's body: its failure becomes the call's. The object outlives the call, whatever the client's
    /// own objects let go of meanwhile.
    template <class Body>
    HRESULT Do(Body&& body) noexcept {
        const Ref<IUnknown> alive(static_cast<Interface*>(this));
        SetErrorInfo(0, nullptr);  // a failure without a text must not show that of an earlier one
        return Call(__uuidof(Interface), source_, body);
    }

  private:
    static constexpr long kEnding = 1 << 30;

    static void Answer(HRESULT code) {
        if (code != S_OK) throw BadCall{code};
    }
    template <class Body>
    HRESULT Plainly(Body&& body) const noexcept {
        return Call(IID_IDispatch, source_, body);
    }

    ModuleUse use_;
    const wchar_t* source_;
    LONG references_ = 1;
};

}  // namespace orvo::com
