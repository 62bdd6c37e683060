#include "com/orvo_tile/ClassFactory.h"

#include "com/orvo_tile/Call.h"
#include "com/orvo_tile/Module.h"
#include "com/orvo_tile/TileImage.h"
#include "com/orvo_tile/TileVector.h"

namespace orvo::com {
namespace {

template <class Object, class Interface>
IUnknown* Create() {
    UsePlatform();
    return static_cast<Interface*>(new Object);
}

class ClassFactory final : public IClassFactory {
  public:
    explicit ClassFactory(const CreatableClass& made) : class_(made) {}
    virtual ~ClassFactory() = default;
    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IClassFactory)) return E_NOINTERFACE;
        *object = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }

    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }

    STDMETHODIMP_(ULONG) Release() override {
        const long left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        HRESULT found = E_FAIL;
        const HRESULT made = Call(id, class_.progId, [&] {
            Ref<IUnknown> instance;
            *instance.Out() = class_.create();
            found = instance->QueryInterface(id, object);
        });
        return FAILED(made) ? made : found;
    }

    STDMETHODIMP LockServer(BOOL lock) override {
        if (lock != FALSE)
            ModuleUse::Lock();
        else
            ModuleUse::Unlock();
        return S_OK;
    }

  private:
    ModuleUse use_;
    const CreatableClass& class_;
    LONG references_ = 1;
};

}  // namespace

const std::array<CreatableClass, 2>& CreatableClasses() {
    static const std::array<CreatableClass, 2> classes{
        {{__uuidof(::clsTileImage), L"Orvo_Tile.clsTileImage", L"Cuts a raster layer into image tiles",
          &Create<TileImage, _clsTileImage>},
         {__uuidof(::clsTileVector), L"Orvo_Tile.clsTileVector", L"Lays a grid of tiles over a vector layer",
          &Create<TileVector, _clsTileVector>}}};
    return classes;
}

HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    Target(object) = nullptr;
    for (const CreatableClass& made : CreatableClasses()) {
        if (!IsEqualCLSID(made.id, classId)) continue;
        Ref<IClassFactory> factory;
        *factory.Out() = new ClassFactory(made);
        return factory->QueryInterface(interfaceId, object);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace orvo::com
