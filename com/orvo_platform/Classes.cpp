#include "com/orvo_platform/Classes.h"

#include <algorithm>
#include <atomic>

#include "com/orvo_platform/Objects.h"

namespace orvo::windows {
namespace {

std::atomic<long> locks{0};

/// Lives as long as the server; a reference to it counts as a lock.
class Factory final : public IClassFactory {  // NOLINT(cppcoreguidelines-virtual-class-destructor): final
  public:
    explicit Factory(const CreatableClass& made) : made_(made) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        const bool known = ::IsEqualIID(id, IID_IUnknown) || ::IsEqualIID(id, IID_IClassFactory);
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++locks); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--locks); }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return Guarded([&] {
            const Value made = Value::Adopt(made_.create());
            return made.Raw().pdispVal->QueryInterface(id, object);
        });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        locks += lock != FALSE ? 1 : -1;
        return S_OK;
    }

  private:
    const CreatableClass& made_;
};

template <std::size_t... Index>
std::array<Factory, sizeof...(Index)> MakeFactories(std::index_sequence<Index...>) {
    return {Factory(CreatableClasses().at(Index))...};
}

}  // namespace

const std::array<CreatableClass, 5>& CreatableClasses() {
    static const std::array<CreatableClass, 5> classes{{
        {{0x83bba1ca, 0x393f, 0x462c, {0xbb, 0x9c, 0x71, 0xf6, 0x99, 0x32, 0x5d, 0x7f}},
         L"OrvoPlatform.Envelope",
         L"OrvoPlatform: envelope",
         NewEmptyEnvelopeObject},
        {{0xcfadcf6e, 0x472b, 0x4989, {0x8a, 0x73, 0x57, 0x9a, 0xc2, 0x6f, 0x4e, 0xc8}},
         L"OrvoPlatform.RasterLayer",
         L"OrvoPlatform: raster layer of an image file",
         NewRasterLayerObject},
        {{0x1549230e, 0xbcaf, 0x4131, {0xae, 0x67, 0x1b, 0x3f, 0x19, 0x62, 0x4a, 0x3b}},
         L"OrvoPlatform.RasterWorkspaceFactory",
         L"OrvoPlatform: factory of raster workspaces",
         NewWorkspaceFactoryObject},
        {{0x1dea32de, 0x6a90, 0x4d43, {0xa6, 0x81, 0x8e, 0x28, 0xe3, 0x93, 0x0c, 0xfd}},
         L"OrvoPlatform.UtilTools",
         L"OrvoPlatform: language and free file names",
         NewUtilToolsObject},
        {{0x019a0e86, 0x5ea2, 0x4f84, {0xa5, 0x9f, 0x3b, 0xd0, 0x39, 0xf7, 0xa8, 0xa4}},
         L"OrvoPlatform.RasterConvert",
         L"OrvoPlatform: export and conversion of images",
         NewRasterConvertObject},
    }};
    return classes;
}

HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    static auto factories = MakeFactories(std::make_index_sequence<5>());
    const auto& classes = CreatableClasses();
    const auto* const found = std::ranges::find_if(
        classes, [&](const CreatableClass& made) { return ::IsEqualCLSID(made.id, classId) != 0; });
    if (found == classes.end()) return CLASS_E_CLASSNOTAVAILABLE;
    return factories.at(static_cast<std::size_t>(found - classes.begin()))
        .QueryInterface(interfaceId, object);
}

bool IsLocked() {
    return locks != 0;
}

}  // namespace orvo::windows
