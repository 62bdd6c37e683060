// A client that calls through the tables of functions, as a compiled host does.
#include "Client.h"
// clang-format off
#include <Orvo_Tile.h>
#include <psapi.h>
// clang-format on

#include <map>

#include "Members.h"

namespace {

using Image = Ref<_clsTileImage>;
using Grid = Ref<_clsTileVector>;

const CLSID kImage = __uuidof(clsTileImage);
const CLSID kGrid = __uuidof(clsTileVector);

HMODULE Server() {
    return GetModuleHandleW(L"Orvo_Tile.dll");
}

template <class Function>
Function* Entry(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(Server(), name)));
}

bool MayUnload() {
    return Entry<HRESULT STDAPICALLTYPE()>("DllCanUnloadNow")() == S_OK;
}

void TestFactories() {
    Ref<IClassFactory> factory;
    Check(CoGetClassObject(kImage, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                           reinterpret_cast<void**>(&factory)) == S_OK);
    void* made = nullptr;
    Check(factory->CreateInstance(factory, IID_IUnknown, &made) == CLASS_E_NOAGGREGATION);
    Check(factory->CreateInstance(nullptr, IID_IStream, &made) == E_NOINTERFACE && made == nullptr);
    const auto getClass = Entry<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**)>("DllGetClassObject");
    Check(getClass(IID_IUnknown, IID_IUnknown, &made) == CLASS_E_CLASSNOTAVAILABLE);
    Check(getClass(kImage, IID_IStream, &made) == E_NOINTERFACE);
    Check(!MayUnload());
    factory.Release();
    Check(MayUnload());
}

void TestIdentity() {
    const Image image(kImage);
    const Ref<ISupportErrorInfo> errors = Ref<IDispatch>(image);
    Check(Ref<IUnknown>(errors).GetInterfacePtr() == Ref<IUnknown>(image).GetInterfacePtr());
    Check(errors->InterfaceSupportsErrorInfo(__uuidof(_clsTileImage)) == S_OK);
    Check(errors->InterfaceSupportsErrorInfo(__uuidof(_clsTileVector)) == S_FALSE);
    void* other = nullptr;
    Check(image->QueryInterface(__uuidof(_clsTileVector), &other) == E_NOINTERFACE);
}

/// The members in the order of the table of functions, which begins behind that of IDispatch.
Members MembersOf(ITypeLib* library, REFIID id) {
    constexpr std::size_t kBefore = 7;
    Ref<ITypeInfo> info, table;
    HREFTYPE reference = 0;
    library->GetTypeInfoOfGuid(id, &info);
    info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference);
    info->GetRefTypeInfo(reference, &table);
    const std::map<int, const wchar_t*> kinds{{INVOKE_FUNC, L"call"},
                                              {INVOKE_PROPERTYGET, L"get"},
                                              {INVOKE_PROPERTYPUT, L"put"},
                                              {INVOKE_PROPERTYPUTREF, L"putref"}};
    Members members;
    FUNCDESC* function = nullptr;
    while (table->GetFuncDesc(static_cast<UINT>(members.size()), &function) == S_OK) {
        const auto place = static_cast<SHORT>((kBefore + members.size()) * sizeof(void*));
        _bstr_t name;
        UINT count = 0;
        table->GetNames(function->memid, name.GetAddress(), 1, &count);
        members.push_back(
            {function->oVft == place ? kinds.at(function->invkind) : L"misplaced", name.GetBSTR()});
        table->ReleaseFuncDesc(function);
    }
    return members;
}

void TestTypeLibrary() {
    const Grid grid(kGrid);
    Ref<ITypeInfo> info;
    Ref<ITypeLib> library, registered;
    UINT index = 0;
    Check(grid->GetTypeInfo(1, 0, &info) == DISP_E_BADINDEX);
    Check(grid->GetTypeInfo(0, 0, &info) == S_OK);
    Check(info->GetContainingTypeLib(&library, &index) == S_OK);
    Check(library->GetTypeInfoCount() == 5);  // three interfaces, two classes, no tile record
    GUID id;
    CLSIDFromString(L"{e5664ef7-d2bb-446c-b653-ad30c238d242}", &id);
    Check(LoadRegTypeLib(id, 1, 0, 0, &registered) == S_OK);
    Check(MembersOf(library, __uuidof(_clsTileImage)) == kImageMembers);
    Check(MembersOf(library, __uuidof(_clsTileVector)) == kGridMembers);
}

/// A status display that answers nothing by name, and whose first three places must never be called.
class StatusDisplay final : public HostBase<IStatusDisplay> {
  public:
    int starts = 0, steps = 0, ends = 0, others = 0;
    long announced = 0;

    STDMETHODIMP Reserved1() override { return Other(); }
    STDMETHODIMP Reserved2() override { return Other(); }
    STDMETHODIMP Reserved3() override { return Other(); }
    STDMETHODIMP ShowMessage(BSTR) override { return Other(); }
    STDMETHODIMP ShowProgress(BSTR text, LONG maxValue, VARIANT_BOOL step) override {
        steps += step != VARIANT_FALSE ? 1 : 0;
        starts += maxValue > 0 ? 1 : 0;
        ends += SysStringLen(text) == 0 ? 1 : 0;
        announced += maxValue;
        return S_OK;
    }

  private:
    HRESULT Other() { return ++others, E_NOTIMPL; }
};

void TestImage() {
    wchar_t source[MAX_PATH];
    GetFullPathNameW(L"source.bmp", MAX_PATH, source, nullptr);
    _variant_t layer = NewRasterLayer(source, 6, 4);
    StatusDisplay* status = new StatusDisplay;
    const _variant_t holds(static_cast<IDispatch*>(status));
    IStatusDisplay* display = status;
    Ref<IDispatch> dictionary, again, workspace;
    {
        const Image image(kImage);
        BSTR format = SysAllocString(L"png"), none = nullptr, path = SysAllocString(TempFolder().c_str());
        short quality = 75;
        VARIANT_BOOL done = VARIANT_TRUE;
        Check(image->Tile(&done) == S_OK && done == VARIANT_FALSE);  // nothing bound
        Check(image->put_GraphicFormat(&format) == S_OK);
        Check(image->put_GraphicConvertProg(&none) == S_OK);
        Check(image->put_SavePath(&path) == S_OK);
        Check(image->put_GraphicQuality(&quality) == S_OK);
        Check(image->putref_StatusObject(&display) == S_OK && status->References() == 2);
        Check(image->putref_ClipEnvelope(nullptr) == S_OK);
        Check(image->ImageLayer(&layer.pdispVal, nullptr) == S_OK && References(layer) == 2);
        Check(image->put_TileWidth(2) == S_OK);
        Check(image->put_TileHeight(4) == S_OK);
        Check(image->Tile(&done) == S_OK && done == VARIANT_TRUE);
        Check(image->get_TileObjectDict(&dictionary) == S_OK);
        Check(image->get_TileObjectDict(&again) == S_OK && again == dictionary);
        Check(image->Tile(nullptr) == E_POINTER);
        Check(image->GetWorkspace(&path, &workspace) == S_OK && bool(workspace));
        SysFreeString(format);
        SysFreeString(path);
    }
    Check(status->starts == 1 && status->announced == 9 && status->ends == 1);
    Check(status->steps >= 9 && status->others == 0);
    Check(status->References() == 1 && References(layer) == 1);
    again.Release();
    Check(Number(dictionary, L"Count") == 3);  // outlives the object that made it
}

/// A grid over an envelope of 1000 × 600: four columns and three rows of 250 × 200, heights set.
void TestGrid() {
    _variant_t extent = NewEnvelope(1000, 600), half = NewEnvelope(500, 600);
    _variant_t layer = Host({{L"AreaOfInterest", half}});
    const Grid grid(kGrid);
    Grid clone;
    Check(grid->putref_LayerExtent(&extent.pdispVal) == S_OK);
    Check(grid->put_TileWidth(250) == S_OK && grid->put_TileHeight(200) == S_OK);
    Check(grid->InitializeTiles() == S_OK);
    SetHeights(grid, 200);
    long count = 0, row = 1;
    Check(grid->get_TileCountX(&count) == S_OK && count == 4);
    Check(grid->get_TileCountY(&count) == S_OK && count == 3);
    Check(grid->get_TileCount(&count) == S_OK && count == 12);
    Check(grid->get_TileCount(nullptr) == E_POINTER);

    _bstr_t text;
    Check(grid->put_Id(_bstr_t(L"layer7")) == S_OK);
    Check(grid->GetTileID(3, &row, text.GetAddress()) == S_OK && text == _bstr_t(L"grp2") && row == 1);
    Check(grid->GetTileTStream(2, 1, nullptr, text.GetAddress()) == S_OK && text == _bstr_t(L"layer7grp1"));
    Ref<IDispatch> tile, again, whole, nothing;
    Check(grid->GetTileExtent(2, &row, &tile) == S_OK);
    Check(grid->GetTileExtent(2, &row, &again) == S_OK && again == tile);
    Check(Number(tile, L"XMin") == 250 && Number(tile, L"YMax") == 200);
    row = 0;
    Check(grid->GetTileExtent(0, &row, &whole) == S_OK && Number(whole, L"Depth") == 600);

    Check(grid->Clone(&half.pdispVal, &clone) == S_OK);
    Check(clone->get_TileCountX(&count) == S_OK && count == 2);
    Check(grid->Clone(nullptr, &clone) == S_OK);
    Check(clone->get_TileCountX(&count) == S_OK && count == 4);
    Check(clone->putref_VectorLayer(&layer.pdispVal) == S_OK);
    Check(clone->get_TileCount(&count) == S_OK && count == 6);
    Check(clone->put_TileCountX(8) == S_OK && clone->get_TileCountX(&count) == S_OK && count == 8);
    Check(clone->put_TileCountY(5) == S_OK && clone->get_TileCountY(&count) == S_OK && count == 5);
    Check(clone->putref_StatusObject(nullptr) == S_OK);

    int asked = 0;
    _variant_t point = NewPoint(600, 300, 500, 200, asked);
    VARIANT_BOOL inside = VARIANT_FALSE;
    long x = -1, y = -1;
    Check(grid->IsInside(&x, &y, &point.pdispVal, &inside) == S_OK && inside == VARIANT_TRUE);
    Check(x == 3 && y == 2);
    Check(grid->Clip(3, 2, &point.pdispVal, &nothing) == S_OK && !nothing);
}

/// The report names the captions in the language of the object that was made last.
void TestLanguage() {
    const auto reportIn = [](const wchar_t* first, const wchar_t* last) {
        SetEnvironmentVariableW(L"ORVO_TILE_LANGUAGE", first);
        const Image image(kImage);
        SetEnvironmentVariableW(L"ORVO_TILE_LANGUAGE", last);
        const Grid grid(kGrid);
        const std::size_t before = Log().size();
        image->put_TileWidth(1);  // no layer: fails; the first report of a process is older than any window
        image->put_TileWidth(1);
        return Log().substr(before);
    };
    Check(reportIn(L"de", L"en").find("PROGRAM INFOS:") != std::string::npos);
    Check(reportIn(L"en", L"fr").find("INFORMATION PROGRAMME :") != std::string::npos);
    Check(reportIn(L"fr", L"de").find("PROGRAMM - INFOS:") != std::string::npos);
}

SIZE_T PrivateBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage;
}

void TestGrowth() {
    _variant_t extent = NewEnvelope(1000, 600);
    const auto createAndRelease = [&](int times) {
        for (int i = 0; i < times; ++i) {
            const Image image(kImage);
            const Grid grid(kGrid);
            grid->putref_LayerExtent(&extent.pdispVal);
            grid->InitializeTiles();
        }
    };
    createAndRelease(500);
    const SIZE_T before = PrivateBytes();
    createAndRelease(10000);
    Check(before > 0 && PrivateBytes() < before + (1U << 20U));
    Check(References(extent) == 1);
}

void TestUnloading() {
    Check(MayUnload());
    {
        const Image image(kImage);
        Check(!MayUnload());
    }
    CoFreeUnusedLibrariesEx(0, 0);
    Check(Server() == nullptr);
    Check(bool(Image(kImage)));  // and it comes back
}

}  // namespace

int main() {
    CoInitialize(nullptr);
    for (const auto& test : {TestFactories, TestIdentity, TestTypeLibrary, TestImage, TestGrid, TestLanguage,
                             TestGrowth, TestUnloading})
        test();
    Check(HostObject::alive == 0 && StatusDisplay::alive == 0);
    CoUninitialize();
    return Summary();
}
