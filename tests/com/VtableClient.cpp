// A client that calls through the tables of functions, as a compiled host does.
#include <Orvo_Tile.h>
#include <psapi.h>

#include "HostObject.h"

namespace {

template <class Interface>
class Held {
  public:
    Held() = default;
    explicit Held(Interface* pointer) : pointer_(pointer) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() { Reset(); }
    void Reset() {
        if (pointer_ != nullptr) pointer_->Release();
        pointer_ = nullptr;
    }
    Interface** Out() {
        Reset();
        return &pointer_;
    }
    void** OutVoid() { return reinterpret_cast<void**>(Out()); }
    Interface* Get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }

  private:
    Interface* pointer_ = nullptr;
};

using Image = Held<_clsTileImage>;
using Grid = Held<_clsTileVector>;

void Create(Image& image) {
    CoCreateInstance(__uuidof(clsTileImage), nullptr, CLSCTX_INPROC_SERVER, __uuidof(_clsTileImage),
                     image.OutVoid());
}
void Create(Grid& grid) {
    CoCreateInstance(__uuidof(clsTileVector), nullptr, CLSCTX_INPROC_SERVER, __uuidof(_clsTileVector),
                     grid.OutVoid());
}

HMODULE Server() {
    return GetModuleHandleW(L"Orvo_Tile.dll");
}

bool MayUnload() {
    using Question = HRESULT(STDAPICALLTYPE*)();
    const FARPROC address = GetProcAddress(Server(), "DllCanUnloadNow");
    return reinterpret_cast<Question>(reinterpret_cast<void*>(address))() == S_OK;
}

// A grid over an envelope of 1000 × 600: four columns and three rows of 250 × 200, heights set.
void SetUp(Grid& grid, HostObject* extent) {
    IDispatch* reference = extent;
    Create(grid);
    CHECK(grid->putref_LayerExtent(&reference) == S_OK);
    CHECK(grid->put_TileWidth(250) == S_OK);
    CHECK(grid->put_TileHeight(200) == S_OK);
    CHECK(grid->InitializeTiles() == S_OK);
    for (long y = 1; y <= 3; ++y) {
        for (long x = 1; x <= 4; ++x) {
            Held<IDispatch> tile;
            grid->GetTileExtent(x, &y, tile.Out());
            SetNumber(tile.Get(), L"Height", 200);
        }
    }
}

void TestFactories() {
    CLSID named;
    CHECK(CLSIDFromProgID(L"Orvo_Tile.clsTileImage", &named) == S_OK &&
          IsEqualCLSID(named, __uuidof(clsTileImage)));
    CHECK(CLSIDFromProgID(L"Orvo_Tile.clsTileVector", &named) == S_OK &&
          IsEqualCLSID(named, __uuidof(clsTileVector)));
    Held<IClassFactory> factory;
    CHECK(CoGetClassObject(__uuidof(clsTileImage), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                           factory.OutVoid()) == S_OK);
    Held<IUnknown> made;
    CHECK(factory->CreateInstance(factory.Get(), IID_IUnknown, made.OutVoid()) == CLASS_E_NOAGGREGATION);
    CHECK(made.Get() == nullptr);
    CHECK(factory->CreateInstance(nullptr, IID_IStream, made.OutVoid()) == E_NOINTERFACE);
    CHECK(CoGetClassObject(__uuidof(clsTileImage), CLSCTX_INPROC_SERVER, nullptr, IID_IStream,
                           made.OutVoid()) == E_NOINTERFACE);
    using GetClass = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    const FARPROC address = GetProcAddress(Server(), "DllGetClassObject");
    CHECK(reinterpret_cast<GetClass>(reinterpret_cast<void*>(address))(
              IID_IUnknown, IID_IUnknown, made.OutVoid()) == CLASS_E_CLASSNOTAVAILABLE);
    CHECK(!MayUnload());
    factory.Reset();
    CHECK(MayUnload());
}

void TestIdentity() {
    Image image;
    Create(image);
    Held<IUnknown> one, other;
    Held<IDispatch> dispatch;
    Held<ISupportErrorInfo> errors;
    CHECK(image->QueryInterface(IID_IUnknown, one.OutVoid()) == S_OK);
    CHECK(image->QueryInterface(IID_IDispatch, dispatch.OutVoid()) == S_OK);
    CHECK(dispatch->QueryInterface(IID_ISupportErrorInfo, errors.OutVoid()) == S_OK);
    CHECK(errors->QueryInterface(IID_IUnknown, other.OutVoid()) == S_OK && one.Get() == other.Get());
    CHECK(errors->InterfaceSupportsErrorInfo(__uuidof(_clsTileImage)) == S_OK);
    CHECK(errors->InterfaceSupportsErrorInfo(__uuidof(_clsTileVector)) == S_FALSE);
    CHECK(image->QueryInterface(__uuidof(_clsTileVector), other.OutVoid()) == E_NOINTERFACE);
}

void TestTypeLibrary() {
    Grid grid;
    Create(grid);
    Held<ITypeInfo> info;
    Held<ITypeLib> library;
    UINT count = 0;
    CHECK(grid->GetTypeInfoCount(&count) == S_OK && count == 1);
    CHECK(grid->GetTypeInfo(1, 0, info.Out()) == DISP_E_BADINDEX);
    CHECK(grid->GetTypeInfo(0, 0, info.Out()) == S_OK);
    CHECK(info->GetContainingTypeLib(library.Out(), &count) == S_OK);
    Text name;
    library->GetDocumentation(-1, name.Out(), nullptr, nullptr, nullptr);
    CHECK(name == L"Orvo_Tile");
    CHECK(library->GetTypeInfoCount() == 5);  // three interfaces, two classes, no tile record
    Held<ITypeLib> registered;
    CHECK(LoadRegTypeLib(__uuidof(_clsTileVector), 1, 0, 0, registered.Out()) != S_OK);
    TLIBATTR* attributes = nullptr;
    library->GetLibAttr(&attributes);
    CHECK(LoadRegTypeLib(attributes->guid, 1, 0, 0, registered.Out()) == S_OK);
    library->ReleaseTLibAttr(attributes);
}

/// A status display that answers nothing by name, and whose first three places must never be called.
class StatusDisplay final : public IStatusDisplay {
  public:
    int messages = 0, starts = 0, steps = 0, ends = 0, others = 0, references = 1;
    long announced = 0;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IDispatch) &&
            !IsEqualIID(id, __uuidof(IStatusDisplay)))
            return E_NOINTERFACE;
        *object = static_cast<IStatusDisplay*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
    STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references); }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return Other(); }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return Other(); }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return Other(); }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return Other();
    }
    STDMETHODIMP Reserved1() override { return Other(); }
    STDMETHODIMP Reserved2() override { return Other(); }
    STDMETHODIMP Reserved3() override { return Other(); }
    STDMETHODIMP ShowMessage(BSTR) override {
        ++messages;
        return S_OK;
    }
    STDMETHODIMP ShowProgress(BSTR text, LONG maxValue, VARIANT_BOOL step) override {
        if (step != VARIANT_FALSE)
            ++steps;
        else if (maxValue > 0)
            ++starts, announced = maxValue;
        else if (SysStringLen(text) == 0)
            ++ends;
        return S_OK;
    }

  private:
    HRESULT Other() {
        ++others;
        return E_NOTIMPL;
    }
};

void TestImage() {
    const std::wstring folder = TempFolder() + L"\\vtable";
    CreateDirectoryW(folder.c_str(), nullptr);
    wchar_t source[MAX_PATH];
    GetFullPathNameW(L"source.bmp", MAX_PATH, source, nullptr);
    HostObject* layer = NewRasterLayer(source, 6, 4);
    StatusDisplay status;
    Held<IDispatch> dictionary, again;
    {
        Image image;
        Create(image);
        IDispatch* reference = layer;
        IStatusDisplay* display = &status;
        Text format(L"png"), none(L""), path(folder.c_str());
        short quality = 75;
        VARIANT_BOOL done = VARIANT_TRUE;
        CHECK(image->Tile(&done) == S_OK && done == VARIANT_FALSE);  // nothing bound
        BSTR text = format.Get();
        CHECK(image->put_GraphicFormat(&text) == S_OK);
        text = none.Get();
        CHECK(image->put_GraphicConvertProg(&text) == S_OK);
        text = path.Get();
        CHECK(image->put_SavePath(&text) == S_OK);
        CHECK(image->put_GraphicQuality(&quality) == S_OK);
        CHECK(image->putref_StatusObject(&display) == S_OK && status.references == 2);
        CHECK(image->putref_ClipEnvelope(nullptr) == S_OK);
        CHECK(image->ImageLayer(&reference, nullptr) == S_OK && layer->References() == 2);
        CHECK(image->put_TileWidth(2) == S_OK);
        CHECK(image->put_TileHeight(2) == S_OK);
        CHECK(image->Tile(&done) == S_OK && done == VARIANT_TRUE);
        CHECK(image->get_TileObjectDict(dictionary.Out()) == S_OK);
        CHECK(image->get_TileObjectDict(again.Out()) == S_OK && again.Get() == dictionary.Get());
        CHECK(image->Tile(nullptr) == E_POINTER);
        Held<IDispatch> workspace;
        CHECK(image->GetWorkspace(&text, workspace.Out()) == S_OK);
    }
    CHECK(status.starts == 1 && status.announced == 18 && status.ends == 1);
    CHECK(status.steps >= 18 && status.messages == 0 && status.others == 0);
    CHECK(status.references == 1 && layer->References() == 1);
    layer->Release();
    again.Reset();
    CHECK(NumberOf(dictionary.Get(), L"Count") == 6);  // outlives the object that made it
}

void TestGrid() {
    HostObject* extent = NewEnvelope(0, 0, 1000, 600);
    {
        Grid grid, clone;
        SetUp(grid, extent);
        long count = 0, row = 1;
        CHECK(grid->get_TileCountX(&count) == S_OK && count == 4);
        CHECK(grid->get_TileCountY(&count) == S_OK && count == 3);
        CHECK(grid->get_TileCount(&count) == S_OK && count == 12);
        CHECK(grid->get_TileCount(nullptr) == E_POINTER);
        Text id, prefix(L"layer7"), other(L"a");
        CHECK(grid->put_Id(prefix.Get()) == S_OK);
        CHECK(grid->GetTileID(3, &row, id.Out()) == S_OK && id == L"grp2" && row == 1);
        CHECK(grid->GetTileTStream(2, 1, nullptr, id.Out()) == S_OK && id == L"layer7grp1");
        CHECK(grid->GetTileTStream(0, 0, other.Get(), id.Out()) == S_OK && id == L"agrp-1");
        Held<IDispatch> tile, again, whole;
        CHECK(grid->GetTileExtent(2, &row, tile.Out()) == S_OK);
        CHECK(grid->GetTileExtent(2, &row, again.Out()) == S_OK && again.Get() == tile.Get());
        CHECK(NumberOf(tile.Get(), L"XMin") == 250 && NumberOf(tile.Get(), L"YMax") == 200);
        row = 0;
        CHECK(grid->GetTileExtent(0, &row, whole.Out()) == S_OK && NumberOf(whole.Get(), L"Depth") == 600);

        HostObject* half = NewEnvelope(0, 0, 500, 600);
        IDispatch* reference = half;
        CHECK(grid->Clone(&reference, clone.Out()) == S_OK);
        CHECK(clone->get_TileCountX(&count) == S_OK && count == 2);
        CHECK(grid->Clone(nullptr, clone.Out()) == S_OK && clone->get_TileCountX(&count) == S_OK &&
              count == 4);
        HostObject* layer = (new HostObject)->With(L"AreaOfInterest", half);
        reference = layer;
        CHECK(clone->putref_VectorLayer(&reference) == S_OK && clone->get_TileCount(&count) == S_OK &&
              count == 6);
        CHECK(clone->put_TileCountX(2) == S_OK && clone->put_TileCountY(3) == S_OK);
        CHECK(clone->putref_StatusObject(nullptr) == S_OK);
        layer->Release();

        HostObject* point = (new HostObject)->With(L"GeometryType", 1L)->With(L"X", 600.0)->With(L"Y", 300.0);
        point->Doing(L"Within", [](const HostObject::Arguments& arguments, VARIANT* result) -> HRESULT {
            IDispatch* envelope = arguments[0]->pdispVal;
            result->vt = VT_BOOL;
            result->boolVal = NumberOf(envelope, L"XMin") < 600 && NumberOf(envelope, L"XMax") > 600 &&
                                      NumberOf(envelope, L"YMin") < 300 && NumberOf(envelope, L"YMax") > 300
                                  ? VARIANT_TRUE
                                  : VARIANT_FALSE;
            return S_OK;
        });
        reference = point;
        VARIANT_BOOL inside = VARIANT_FALSE;
        long x = -1, y = -1;
        CHECK(grid->IsInside(&x, &y, &reference, &inside) == S_OK && inside == VARIANT_TRUE && x == 3 &&
              y == 2);
        Held<IDispatch> nothing;
        CHECK(grid->Clip(3, 2, &reference, nothing.Out()) == S_OK && nothing.Get() == nullptr);
        point->Release();
    }
    CHECK(extent->References() == 1);
    extent->Release();
    CHECK(HostObject::alive == 0);
}

/// The report names the captions in the language of the object that was made last.
void TestLanguage() {
    const auto reportIn = [](const wchar_t* first, const wchar_t* last) {
        Image image;
        Grid grid;
        SetEnvironmentVariableW(L"ORVO_TILE_LANGUAGE", first);
        Create(image);
        SetEnvironmentVariableW(L"ORVO_TILE_LANGUAGE", last);
        Create(grid);
        const std::size_t before = Log().size();
        image->put_TileWidth(1);  // no layer: fails; the first report of a process is older than any window
        image->put_TileWidth(1);
        grid->InitializeTiles();
        return Log().substr(before);
    };
    CHECK(reportIn(L"de", L"en").find("PROGRAM INFOS:") != std::string::npos);
    CHECK(reportIn(L"en", L"fr").find("INFORMATION PROGRAMME :") != std::string::npos);
    CHECK(reportIn(L"fr", L"de").find("PROGRAMM - INFOS:") != std::string::npos);
}

SIZE_T PrivateBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage;
}

void TestGrowth() {
    HostObject* extent = NewEnvelope(0, 0, 1000, 600);
    const auto createAndRelease = [&](int times) {
        for (int i = 0; i < times; ++i) {
            Image image;
            Grid grid;
            Create(image);
            Create(grid);
            IDispatch* reference = extent;
            grid->putref_LayerExtent(&reference);
            grid->InitializeTiles();
        }
    };
    createAndRelease(500);
    const SIZE_T before = PrivateBytes();
    createAndRelease(10000);
    const SIZE_T after = PrivateBytes();
    CHECK(before > 0 && after < before + (1U << 20U));
    std::printf("growth over 10000 of each: %ld bytes\n", static_cast<long>(after - before));
    CHECK(extent->References() == 1);
    extent->Release();
}

void TestUnloading() {
    CHECK(Server() != nullptr && MayUnload());
    Image image;
    Create(image);
    CHECK(!MayUnload());
    image.Reset();
    CHECK(MayUnload());
    CoFreeUnusedLibrariesEx(0, 0);
    CHECK(Server() == nullptr);
    Create(image);  // and it comes back
    CHECK(image.Get() != nullptr);
}

}  // namespace

int main() {
    CoInitialize(nullptr);
    TestFactories();
    TestIdentity();
    TestTypeLibrary();
    TestImage();
    TestGrid();
    TestLanguage();
    TestGrowth();
    TestUnloading();
    CoUninitialize();
    return Summary();
}
