// What the compiled clients share: calls by name, objects of a host, and the members that both classes offer.
#pragma once

#include <comdef.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
// clang-format off
#include <Orvo_Tile.h>
// clang-format on

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

template <class Interface>
const IID& IdOfInterface() {
    return __uuidof(Interface);
}
/// A counted reference.
template <class Interface>
using Ref = _com_ptr_t<_com_IIID_getter<Interface, IdOfInterface<Interface>>>;

/// What a call by name gave.
struct Answer {
    HRESULT code = DISP_E_UNKNOWNNAME;
    _variant_t value;
    EXCEPINFO exception{};
    UINT wrong = 99;

    /// It succeeded with that value, of that type.
    bool Is(const _variant_t& expected) const { return code == S_OK && value == expected; }
};

inline DISPID IdOf(IDispatch* object, std::wstring name) {
    LPOLESTR names = name.data();
    DISPID id = DISPID_UNKNOWN;
    object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    return id;
}

/// @param names the places of the arguments that are named; these come first in the list, which runs
/// backwards
inline Answer Invoke(IDispatch* object, WORD flags, const wchar_t* name,
                     std::vector<_variant_t> arguments = {}, std::vector<DISPID> names = {}) {
    std::reverse(arguments.begin(), arguments.end());
    DISPPARAMS given{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                     static_cast<UINT>(names.size())};
    Answer answer;
    answer.code = object->Invoke(IdOf(object, name), IID_NULL, LOCALE_USER_DEFAULT, flags, &given,
                                 &answer.value, &answer.exception, &answer.wrong);
    return answer;
}
inline Answer Call(IDispatch* object, const wchar_t* name, const std::vector<_variant_t>& arguments = {}) {
    return Invoke(object, DISPATCH_METHOD, name, arguments);
}
inline Answer Get(IDispatch* object, const wchar_t* name) {
    return Invoke(object, DISPATCH_PROPERTYGET, name);
}
inline HRESULT Put(IDispatch* object, const wchar_t* name, const _variant_t& value,
                   WORD kind = DISPATCH_PROPERTYPUT) {
    return Invoke(object, kind, name, {value}, {DISPID_PROPERTYPUT}).code;
}

/// Counts references; answers for one interface, and nothing by name.
template <class Interface>
class HostBase : public Interface {
  public:
    static inline int alive = 0;
    ULONG references = 0;

    HostBase() { ++alive; }
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(Interface);
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references;
        if (left == 0) delete this;
        return left;
    }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

  protected:
    virtual ~HostBase() { --alive; }
};

/// A member of a host's object: a value that may be put, or a method.
struct HostMember {
    std::wstring name;
    _variant_t value;
    std::function<HRESULT(VARIANT* arguments, VARIANT* result)> method = nullptr;
};

class HostObject final : public HostBase<IDispatch> {
  public:
    explicit HostObject(std::vector<HostMember> members) : members_(std::move(members)) {}

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        const auto found = std::ranges::find(members_, *names, &HostMember::name);
        *ids = static_cast<DISPID>(found - members_.begin());
        return found == members_.end() ? DISP_E_UNKNOWNNAME : S_OK;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* given, VARIANT* result, EXCEPINFO*,
                        UINT*) override {
        HostMember& member = members_[id];
        if (member.method) return member.method(given->rgvarg, result);
        const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        return put ? VariantCopy(&member.value, given->rgvarg) : VariantCopy(result, &member.value);
    }

  private:
    std::vector<HostMember> members_;
};

/// A value that holds a new object with those members.
inline _variant_t Host(std::vector<HostMember> members) {
    return static_cast<IDispatch*>(new HostObject(std::move(members)));
}
inline ULONG References(const _variant_t& object) {
    return static_cast<HostObject*>(object.pdispVal)->references;
}

inline _variant_t NewEnvelope(double width, double height) {
    std::vector<HostMember> members{{L"IsEmpty", false}};
    for (const auto& [name, value] : {std::pair{L"XMin", 0.0},
                                      {L"YMin", 0.0},
                                      {L"XMax", width},
                                      {L"YMax", height},
                                      {L"Width", width},
                                      {L"Height", height},
                                      {L"Depth", 0.0}})
        members.push_back({name, value});
    return Host(std::move(members));
}

/// A raster of 6 × 4 cells of 1 with its lower left corner at (0, 0).
inline _variant_t NewRasterLayer(const wchar_t* path) {
    const _variant_t raster = Host({{L"Width", 6},
                                    {L"Height", 4},
                                    {L"MeanCellSize", Host({{L"X", 1.0}, {L"Y", 1.0}})},
                                    {L"RasterDataset", Host({{L"FormatName", L"BMP"}})}});
    return Host({{L"FilePath", path}, {L"Raster", raster}, {L"Extent", NewEnvelope(6, 4)}});
}

/// A grid over an envelope of 1000 × 600: four columns and three rows of 250 × 200, heights set.
inline Ref<IDispatch> NewGrid() {
    const Ref<IDispatch> grid(L"Orvo_Tile.clsTileVector");
    EXPECT_EQ(Put(grid, L"LayerExtent", NewEnvelope(1000, 600)), S_OK);  // as JScript puts objects
    Put(grid, L"TileWidth", 250);
    Put(grid, L"TileHeight", 200);
    EXPECT_TRUE(Call(grid, L"InitializeTiles").Is(_variant_t()));
    for (int i = 0; i < 12; ++i)
        Put(Call(grid, L"GetTileExtent", {i % 4 + 1, i / 4 + 1}).value.pdispVal, L"Height", 200);
    return grid;
}

/// A point that lies in the tile with that lower left corner alone.
inline _variant_t NewPoint(double x, double y, double tileX, double tileY) {
    const auto within = [=](VARIANT* arguments, VARIANT* result) {
        IDispatch* tile = arguments[0].pdispVal;
        const bool holds = Get(tile, L"XMin").Is(tileX) && Get(tile, L"YMin").Is(tileY);
        *result = _variant_t(holds).Detach();
        return S_OK;
    };
    return Host({{L"GeometryType", 1}, {L"X", x}, {L"Y", y}, {L"Within", {}, within}});
}

inline std::wstring TempFolder() {
    return _wgetenv(L"TEMP");
}

/// What a call adds to the reports of failures.
inline std::string Reported(const std::function<void()>& call) {
    const auto log = [] {
        std::ifstream file(std::filesystem::path(TempFolder()) / "Orvo_Tile.EPT", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const std::size_t before = log().size();
    call();
    return log().substr(before);
}

/// A function of an interface, and the way it is used: "call", "get", "put" or "putref".
struct ListedFunction {
    std::wstring kind, name;
    bool operator==(const ListedFunction&) const = default;
};

/// What both classes offer, in the order and of the kinds that compiled hosts rely on.
inline std::vector<ListedFunction> Listed(REFIID id) {
    std::vector<ListedFunction> functions;
    std::wistringstream words(id == __uuidof(_clsTileImage) ? LR"(
        putref ClipEnvelope  get TileObjectDict  put GraphicFormat  put GraphicConvertProg
        put GraphicQuality  putref StatusObject  call ImageLayer  put SavePath  put TileWidth
        put TileHeight  call Tile  call GetWorkspace)"
                                                            : LR"(
        call Clone  put Id  putref StatusObject  putref LayerExtent  putref VectorLayer
        put TileCountX  get TileCountX  put TileCountY  get TileCountY  put TileWidth  put TileHeight
        get TileCount  call InitializeTiles  call GetTileID  call GetTileExtent  call GetTileTStream
        call Clip  call IsInside)");
    for (ListedFunction each; words >> each.kind >> each.name;) functions.push_back(each);
    return functions;
}
