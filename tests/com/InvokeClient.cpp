// A client that knows names only: it makes the calls that interpreters make.
#include <cstdint>

#include "Client.h"
#include "Members.h"

namespace {

_variant_t LeftOut() {
    _variant_t made;
    made.vt = VT_ERROR;
    made.scode = DISP_E_PARAMNOTFOUND;
    return made;
}

_variant_t To(int type, void* variable) {
    _variant_t made;
    made.vt = static_cast<VARTYPE>(type | VT_BYREF);
    made.byref = variable;
    return made;
}

/// Every property can be used in the ways listed, and in no other.
void TestKinds(IDispatch* object, const Members& members) {
    const auto expected = [&](const wchar_t* kind, const std::wstring& name) {
        return std::ranges::count(members, Member{kind, name}) == 1 ? S_OK : DISP_E_MEMBERNOTFOUND;
    };
    for (const auto& [kind, name] : members) {
        if (kind == L"call") continue;
        Check(Get(object, name.c_str()).code == expected(L"get", name));
        if (kind == L"putref")
            Check(Put(object, name.c_str(), 7) == DISP_E_TYPEMISMATCH &&
                  PutRef(object, name.c_str(), nullptr) == S_OK);
        else
            Check(Put(object, name.c_str(), 7) == expected(L"put", name));
    }
}

void TestArguments(IDispatch* grid) {
    Check(IdOf(grid, L"CLIP") == IdOf(grid, L"Clip") && IdOf(grid, L"Extent") == DISPID_UNKNOWN);
    const auto id = [&](const std::vector<_variant_t>& arguments) {
        return Call(grid, L"GetTileID", arguments);
    };
    Check(id({1}).code == DISP_E_PARAMNOTOPTIONAL);
    Check(id({1, 1, 1}).code == DISP_E_BADPARAMCOUNT);
    Check(id({1, L"one"}).code == DISP_E_TYPEMISMATCH && id({1, L"one"}).wrong == 0);
    Check(id({L"one", 1}).code == DISP_E_TYPEMISMATCH && id({L"one", 1}).wrong == 1);
    Check(id({1, 3e9}).code == DISP_E_OVERFLOW);
    Check(id({L"2", 1.4}).Is(L"grp1"));
    Check(id({2.5, 1}).Is(L"grp1"));  // half to even

    constexpr const wchar_t* kName = L"GetTileTStream";
    Check(Call(grid, kName, {2, 1}).Is(L"7grp1"));
    Check(Call(grid, kName, {2, 1, LeftOut()}).Is(L"7grp1"));
    Check(Do(grid, DISPATCH_METHOD, kName, {1, 2, L"b"}, {2, 0, 1}).Is(L"bgrp1"));
    Check(Do(grid, DISPATCH_METHOD, kName, {1, 2}, {2, 2}).code == DISP_E_PARAMNOTFOUND);
    Check(Call(grid, L"Clone", {LeftOut()}).value.vt == VT_DISPATCH);
}

/// Variables of every kind get the tile's numbers back, in the type that they have.
void TestWritingBack(IDispatch* grid) {
    int asked = 0;
    _variant_t point = NewPoint(600, 300, 500, 200, asked);
    const auto inside = [&](const _variant_t& x, const _variant_t& y, const _variant_t& geometry) {
        return Call(grid, L"IsInside", {x, y, geometry}).Is(true);
    };
    long number = -1;
    short integer = -1;
    double real = -1;
    BSTR text = SysAllocString(L"-1");
    _variant_t any = short{-1}, same = L"3";
    Check(inside(To(VT_I4, &number), To(VT_I2, &integer), point) && number == 3 && integer == 2);
    Check(inside(To(VT_R8, &real), To(VT_BSTR, &text), To(VT_DISPATCH, &point.pdispVal)));
    Check(real == 3 && std::wstring(text) == L"2");
    Check(inside(To(VT_VARIANT, &any), -1, point) && any == _variant_t(3L));
    std::int64_t wide = -1;
    int plain = -1;
    signed char small = -1;
    DECIMAL decimal{};  // -1
    decimal.sign = DECIMAL_NEG;
    decimal.Lo64 = 1;
    _variant_t handedOn = To(VT_I4, &number);
    number = -1;
    Check(inside(To(VT_I8, &wide), To(VT_INT, &plain), point) && wide == 3 && plain == 2);
    Check(inside(To(VT_DECIMAL, &decimal), To(VT_I1, &small), point) && small == 2);
    Check(decimal.Lo64 == 3 && decimal.scale == 0 && decimal.sign == 0);
    Check(inside(To(VT_VARIANT, &handedOn), -1, point) && number == 3);
    // A number that is not changed leaves the variable's own type alone.
    Check(inside(To(VT_VARIANT, &same), 2, point) && same == _variant_t(L"3"));
    Check(asked == 7 && References(point) == 1);
    SysFreeString(text);
}

/// A failure inside the error report's own writing reaches the caller, with number, text and source.
void TestFailingCall(IDispatch* image) {
    const std::wstring folder = TempFolder();
    SetEnvironmentVariableW(L"TEMP", L"C:\\no\\such\\folder");
    const Answer answer = Do(image, DISPATCH_PROPERTYPUT, L"TileWidth", {5}, {DISPID_PROPERTYPUT});
    SetEnvironmentVariableW(L"TEMP", folder.c_str());
    Check(answer.code == DISP_E_EXCEPTION && answer.exception.scode == static_cast<SCODE>(0x800A004C));
    Check(std::wstring(_bstr_t(answer.exception.bstrDescription)).starts_with(L"Path not found"));
    Check(_bstr_t(answer.exception.bstrSource) == _bstr_t(L"Orvo_Tile.clsTileImage"));
    // Any other failure is the procedure's own affair: logged, answered by the policy, and the call succeeds.
    const std::size_t before = Log().size();
    Check(Put(image, L"TileWidth", 5) == S_OK);
    const std::string report = Log().substr(before);
    Check(report.find("91") != std::string::npos && report.find("TileWidth [LET]") != std::string::npos);
}

/// A status object that fails: the host's own number stands in the report, and the job goes on.
void TestErrorSink(IDispatch* image) {
    int shown = 0;
    const Method fail = [&](VARIANT*, VARIANT*) {
        return ++shown, static_cast<HRESULT>(0x800A03E9);
    };  // 1001
    const _variant_t sink = Host({{L"ShowProgress", {}, fail}});
    const _variant_t layer = NewRasterLayer(L"C:\\windows\\win.ini", 4, 4);
    PutRef(image, L"StatusObject", sink.pdispVal);
    Put(image, L"SavePath", TempFolder().c_str());
    for (const wchar_t* policy : {L"next", L"leave"}) {
        SetEnvironmentVariableW(L"ORVO_TILE_ON_ERROR", policy);
        const std::size_t before = Log().size();
        shown = 0;
        Call(image, L"ImageLayer", {layer});
        Put(image, L"TileWidth", 2);
        Put(image, L"TileHeight", 2);
        Check(Call(image, L"Tile").Is(true));
        const std::string report = Log().substr(before);
        Check(report.find("1001") != std::string::npos &&
              report.find("CreateMessageText") != std::string::npos);
        Check(shown >= 6);  // the start, the end, each of the four tiles
    }
    PutRef(image, L"StatusObject", nullptr);
    Call(image, L"ImageLayer", {static_cast<IDispatch*>(nullptr)});
    Check(References(sink) == 1 && References(layer) == 1);
}

void TestAll() {
    const Ref<IDispatch> image(L"Orvo_Tile.clsTileImage");
    const Ref<IDispatch> grid(L"Orvo_Tile.clsTileVector");
    Check(image && grid);
    TestKinds(image, kImageMembers);
    TestKinds(grid, kGridMembers);
    Check(Put(grid, L"LayerExtent", NewEnvelope(1000, 600)) == S_OK);  // as JScript puts objects
    for (const wchar_t* one : {L"TileCountX", L"TileCountY"}) Put(grid, one, 1);
    Put(grid, L"TileWidth", 250);
    Put(grid, L"TileHeight", 200);
    Put(grid, L"Id", 7);
    Check(Do(grid, DISPATCH_METHOD | DISPATCH_PROPERTYGET, L"TileCountX").Is(4L));
    Check(Call(grid, L"InitializeTiles").Is(_variant_t()));
    SetHeights(grid, 200);
    TestArguments(grid);
    TestWritingBack(grid);
    TestFailingCall(image);
    TestErrorSink(image);
}

}  // namespace

int main() {
    CoInitialize(nullptr);
    TestAll();
    Check(HostObject::alive == 0);
    CoUninitialize();
    return Summary();
}
