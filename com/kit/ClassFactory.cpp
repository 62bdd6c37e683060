#include "com/kit/ClassFactory.h"

#include "com/kit/Guarded.h"
#include "com/kit/Server.h"
#include "platform/windows/automation/Automation.h"
#include "platform/windows/automation/Counted.h"

namespace orvo::com {
namespace {

using windows::Ref;

class ClassFactory final : public windows::Counted<IClassFactory> {
  public:
    explicit ClassFactory(const CreatableClass& made) : class_(made) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        const bool known = ::IsEqualIID(id, IID_IUnknown) || ::IsEqualIID(id, IID_IClassFactory);
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return Guarded(id, class_.progId, [&] {
            Ref<IUnknown> instance;
            *instance.Out() = class_.create();
            return instance->QueryInterface(id, object);
        });
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        lock != FALSE ? windows::ServerUse::Begin() : windows::ServerUse::End();
        return S_OK;
    }

  private:
    const CreatableClass& class_;
};

}  // namespace

HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    Checked(object) = nullptr;
    for (const CreatableClass& made : ThisServer().classes) {
        if (!::IsEqualCLSID(made.id, classId)) continue;
        Ref<IClassFactory> factory;
        *factory.Out() = new ClassFactory(made);
        return factory->QueryInterface(interfaceId, object);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace orvo::com
