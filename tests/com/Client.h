// What the compiled clients share: calls by name, objects of a host, and the members that both classes offer.
#pragma once

#include <comdef.h>
#include <gmock/gmock.h>
// clang-format off
#include <Orvo_Tile.h>
// clang-format on

#include <filesystem>
#include <fstream>

#include "platform/windows/automation/ScriptObject.h"

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

/// An object of the host with those members.
inline _variant_t Host(std::vector<orvo::windows::Member> members) {
    struct Object final : orvo::windows::ScriptObject {
        explicit Object(std::vector<orvo::windows::Member> own) {
            for (auto& member : own) Add(std::move(member));
        }
    };
    return {new Object(std::move(members)), false};
}
inline orvo::windows::Member Holding(const wchar_t* name, const _variant_t& given) {
    return orvo::windows::Property(name, [value = orvo::windows::Value::Copy(given)] { return value; });
}
inline ULONG References(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

/// An envelope from (0, 0).
inline _variant_t NewEnvelope(double width, double height) {
    std::vector<orvo::windows::Member> members{Holding(L"IsEmpty", false)};
    for (const wchar_t* name : {L"XMin", L"YMin", L"Depth"}) members.push_back(Holding(name, 0.0));
    for (const wchar_t* name : {L"XMax", L"Width"}) members.push_back(Holding(name, width));
    for (const wchar_t* name : {L"YMax", L"Height"}) members.push_back(Holding(name, height));
    return Host(std::move(members));
}

/// A raster of 6 × 4 cells of 1 with its lower left corner at (0, 0).
inline _variant_t NewRasterLayer(const std::wstring& path) {
    const _variant_t size = Host({Holding(L"X", 1.0), Holding(L"Y", 1.0)});
    const _variant_t dataset = Host({Holding(L"FormatName", L"BMP")});
    const _variant_t raster = Host({Holding(L"Width", 6), Holding(L"Height", 4),
                                    Holding(L"MeanCellSize", size), Holding(L"RasterDataset", dataset)});
    return Host({Holding(L"FilePath", path.c_str()), Holding(L"Raster", raster),
                 Holding(L"Extent", NewEnvelope(6, 4))});
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
    const auto within = [=](const orvo::windows::Arguments& arguments) {
        IDispatch* tile = arguments.At(0).Raw().pdispVal;
        return orvo::windows::Value(Get(tile, L"XMin").Is(tileX) && Get(tile, L"YMin").Is(tileY));
    };
    return Host({Holding(L"GeometryType", 1), Holding(L"X", x), Holding(L"Y", y), {L"Within", within}});
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
    return call(), log().substr(before);
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
