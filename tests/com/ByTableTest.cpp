// A client that calls through the tables of functions, as a compiled host does.
#include "Client.h"
// clang-format off
#include <psapi.h>
// clang-format on

namespace {

using Image = Ref<_clsTileImage>;
using Grid = Ref<_clsTileVector>;

const CLSID kImage = __uuidof(clsTileImage);
const CLSID kGrid = __uuidof(clsTileVector);

template <class Function>
Function* Entry(const char* name) {
    const auto address = GetProcAddress(GetModuleHandleW(L"Orvo_Tile.dll"), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
}

bool MayUnload() {
    return Entry<HRESULT STDAPICALLTYPE()>("DllCanUnloadNow")() == S_OK;
}

TEST(ByTable, FactoriesHoldTheServer) {
    Ref<IClassFactory> factory;
    ASSERT_EQ(CoGetClassObject(kImage, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                               reinterpret_cast<void**>(&factory)),
              S_OK);
    void* made = nullptr;
    EXPECT_EQ(factory->CreateInstance(factory, IID_IUnknown, &made), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IStream, &made), E_NOINTERFACE);
    const auto getClass = Entry<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**)>("DllGetClassObject");
    EXPECT_EQ(getClass(IID_IUnknown, IID_IUnknown, &made), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(getClass(kImage, IID_IStream, &made), E_NOINTERFACE);
    EXPECT_TRUE(!made && !MayUnload());
    factory->LockServer(TRUE);
    Ref<IClassFactory> last = factory;
    factory.Release();
    last->LockServer(FALSE);
    EXPECT_FALSE(MayUnload());
    last.Release();
    EXPECT_TRUE(MayUnload());
}

TEST(ByTable, AnObjectIsOneInAllItsInterfaces) {
    const Image image(kImage);
    const Ref<ISupportErrorInfo> errors = Ref<IDispatch>(image);
    EXPECT_EQ(Ref<IUnknown>(errors).GetInterfacePtr(), Ref<IUnknown>(image).GetInterfacePtr());
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(__uuidof(_clsTileImage)), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(__uuidof(_clsTileVector)), S_FALSE);
    void* other = nullptr;
    EXPECT_EQ(image->QueryInterface(__uuidof(_clsTileVector), &other), E_NOINTERFACE);
}

/// The functions in the order of the table, which begins behind that of IDispatch.
std::vector<ListedFunction> FunctionsOf(ITypeLib* library, REFIID id) {
    constexpr std::size_t kBefore = 7;
    Ref<ITypeInfo> info, table;
    HREFTYPE reference = 0;
    library->GetTypeInfoOfGuid(id, &info);
    info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference);
    info->GetRefTypeInfo(reference, &table);
    const wchar_t* const kinds[] = {L"", L"call", L"get", L"", L"put", L"", L"", L"", L"putref"};
    std::vector<ListedFunction> functions;
    FUNCDESC* function = nullptr;
    while (table->GetFuncDesc(static_cast<UINT>(functions.size()), &function) == S_OK) {
        const bool inPlace =
            function->oVft == static_cast<SHORT>((kBefore + functions.size()) * sizeof(void*));
        _bstr_t name;
        UINT count = 0;
        table->GetNames(function->memid, name.GetAddress(), 1, &count);
        functions.push_back({inPlace ? kinds[function->invkind] : L"misplaced", name.GetBSTR()});
        table->ReleaseFuncDesc(function);
    }
    return functions;
}

TEST(ByTable, TheTypeLibraryIsRegisteredAndComplete) {
    const Grid grid(kGrid);
    Ref<ITypeInfo> info;
    Ref<ITypeLib> library, registered;
    UINT index = 0;
    EXPECT_EQ(grid->GetTypeInfo(1, 0, &info), DISP_E_BADINDEX);
    ASSERT_EQ(grid->GetTypeInfo(0, 0, &info), S_OK);
    ASSERT_EQ(info->GetContainingTypeLib(&library, &index), S_OK);
    EXPECT_EQ(library->GetTypeInfoCount(), 5U);  // three interfaces, two classes, no tile record
    GUID id;
    CLSIDFromString(L"{e5664ef7-d2bb-446c-b653-ad30c238d242}", &id);
    EXPECT_EQ(LoadRegTypeLib(id, 1, 0, 0, &registered), S_OK);
    for (const IID& each : {__uuidof(_clsTileImage), __uuidof(_clsTileVector)})
        EXPECT_EQ(FunctionsOf(library, each), Listed(each));
}

/// A status display that answers nothing by name and fails, and whose other places must never be called.
struct StatusDisplay final : orvo::windows::Counted<IStatusDisplay> {
    int starts = 0, steps = 0, ends = 0, others = 0;
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(IStatusDisplay);
        *object = known ? this : nullptr;
        return known ? AddRef(), S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Reserved1() override { return ++others, E_NOTIMPL; }
    STDMETHODIMP Reserved2() override { return ++others, E_NOTIMPL; }
    STDMETHODIMP Reserved3() override { return ++others, E_NOTIMPL; }
    STDMETHODIMP ShowMessage(BSTR) override { return ++others, E_NOTIMPL; }
    STDMETHODIMP ShowProgress(BSTR text, LONG maxValue, VARIANT_BOOL step) override {
        steps += step != VARIANT_FALSE ? 1 : 0;
        starts += maxValue > 0 ? 1 : 0;
        ends += SysStringLen(text) == 0 ? 1 : 0;
        return static_cast<HRESULT>(0x800A03E9);  // 1001
    }
};

TEST(ByTable, AJobRunsOnTheHostsObjectsAndLetsThemGo) {
    _variant_t layer = NewRasterLayer((std::filesystem::current_path() / "source.bmp").wstring());
    StatusDisplay* status = new StatusDisplay;
    const _variant_t holds(status, false);
    IStatusDisplay* display = status;
    Ref<IDispatch> dictionary, again, workspace;
    {
        const Image image(kImage);
        _bstr_t format(L"png"), path(TempFolder().c_str());
        BSTR none = nullptr;
        short quality = 75;
        VARIANT_BOOL done = VARIANT_TRUE;
        EXPECT_EQ(image->Tile(&done), S_OK);
        EXPECT_EQ(done, VARIANT_FALSE) << "nothing bound";
        for (const HRESULT code :
             {image->put_GraphicFormat(&format.GetBSTR()), image->put_GraphicConvertProg(&none),
              image->put_SavePath(&path.GetBSTR()), image->put_GraphicQuality(&quality),
              image->putref_StatusObject(&display), image->putref_ClipEnvelope(nullptr),
              image->ImageLayer(&layer.pdispVal, nullptr), image->put_TileWidth(2), image->put_TileHeight(4),
              image->get_TileObjectDict(&dictionary), image->get_TileObjectDict(&again),
              image->GetWorkspace(&path.GetBSTR(), &workspace)})
            EXPECT_EQ(code, S_OK);
        const std::string report = Reported([&] { EXPECT_EQ(image->Tile(&done), S_OK); });
        EXPECT_THAT(report,
                    testing::AllOf(testing::HasSubstr("1001"), testing::HasSubstr("CreateMessageText")));
        EXPECT_EQ(done, VARIANT_TRUE) << "a failing status object does not end the job";
        EXPECT_TRUE(again == dictionary && bool(workspace));
        EXPECT_EQ(std::pair(References(status), References(layer.pdispVal)), std::pair(2UL, 2UL));
        EXPECT_EQ(image->Tile(nullptr), E_POINTER);
    }
    EXPECT_EQ(std::tuple(status->starts, status->ends, status->others), std::tuple(1, 1, 0));
    EXPECT_GE(status->steps, 3);
    EXPECT_EQ(std::pair(References(status), References(layer.pdispVal)), std::pair(1UL, 1UL));
    again.Release();
    EXPECT_TRUE(Get(dictionary, L"Count").Is(3L)) << "outlives the object that made it";
}

TEST(ByTable, PointersThatAreLeftOutAreEmptyOrRefused) {
    const Grid grid = NewGrid();
    _bstr_t text;
    Grid clone;
    EXPECT_EQ(grid->get_TileCount(nullptr), E_POINTER);
    EXPECT_EQ(grid->IsInside(nullptr, nullptr, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(grid->GetTileTStream(2, 1, nullptr, text.GetAddress()), S_OK);
    EXPECT_STREQ(text, L"grp1");
    EXPECT_EQ(grid->Clone(nullptr, &clone), S_OK);
    EXPECT_TRUE(clone && grid->putref_StatusObject(nullptr) == S_OK);
}

/// The report names the captions in the language of the object that was made last.
TEST(ByTable, ReportsAreInTheLanguageOfTheLastObject) {
    for (const auto& [first, last, caption] : {std::tuple{L"de", L"fr", "INFORMATION PROGRAMME :"},
                                               {L"fr", L"de", "PROGRAMM - INFOS:"},
                                               {L"de", L"en", "PROGRAM INFOS:"}}) {
        SetEnvironmentVariableW(L"ORVO_TILE_LANGUAGE", first);
        const Image image(kImage);
        SetEnvironmentVariableW(L"ORVO_TILE_LANGUAGE", last);
        const Grid grid(kGrid);
        image->put_TileWidth(1);  // no layer: fails; the first report of a process is older than any window
        EXPECT_THAT(Reported([&] { image->put_TileWidth(1); }), testing::HasSubstr(caption));
    }
}

TEST(ByTable, TenThousandLivesDoNotGrow) {
    _variant_t extent = NewEnvelope(1000, 600);
    /// The memory of the process after so many lives.
    const auto usedAfter = [&](int times) {
        for (int i = 0; i < times; ++i) {
            const Image image(kImage);
            const Grid grid(kGrid);
            grid->putref_LayerExtent(&extent.pdispVal);
            grid->InitializeTiles();
        }
        PROCESS_MEMORY_COUNTERS counters{};
        GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
        return counters.PagefileUsage;
    };
    const SIZE_T before = usedAfter(500);
    EXPECT_GT(before, 0U);
    EXPECT_LT(usedAfter(10000), before + (1U << 20U));
    EXPECT_EQ(References(extent.pdispVal), 1U);
}

TEST(ByTable, TheServerIsUnloadedAndComesBack) {
    ASSERT_TRUE(MayUnload());
    {
        const Image image(kImage);
        EXPECT_FALSE(MayUnload());
    }
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(GetModuleHandleW(L"Orvo_Tile.dll"), nullptr);
    EXPECT_TRUE(bool(Image(kImage)));
}

}  // namespace

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    CoInitialize(nullptr);
    const int code = RUN_ALL_TESTS();
    const long held = orvo::windows::ServerUse::Count();
    if (held != 0) std::printf("%ld objects of the host are still held\n", held);
    return code == 0 && held == 0 ? 0 : 1;
}
