// A client that knows names only: it makes the calls that interpreters make.
#include "Client.h"

namespace {

_variant_t To(int type, void* variable) {
    _variant_t made;
    made.vt = static_cast<VARTYPE>(type | VT_BYREF);
    made.byref = variable;
    return made;
}

/// Every property can be used in the ways listed, and in no other.
TEST(ByName, PropertiesAreOfTheirKinds) {
    const _variant_t nothing(static_cast<IDispatch*>(nullptr));
    for (const auto& [progId, id] : {std::pair{L"Orvo_Tile.clsTileImage", __uuidof(_clsTileImage)},
                                     {L"Orvo_Tile.clsTileVector", __uuidof(_clsTileVector)}}) {
        const Ref<IDispatch> object(progId);
        const auto functions = Listed(id);
        for (const auto& [kind, name] : functions) {
            const auto expected = [&](const wchar_t* way) {
                const bool listed = std::ranges::count(functions, ListedFunction{way, name}) == 1;
                return listed ? S_OK : DISP_E_MEMBERNOTFOUND;
            };
            if (kind == L"call") continue;
            SCOPED_TRACE(name);
            EXPECT_EQ(Get(object, name.c_str()).code, expected(L"get"));
            const HRESULT put = Put(object, name.c_str(), 7);
            EXPECT_EQ(put, kind == L"putref" ? DISP_E_TYPEMISMATCH : expected(L"put"));
            EXPECT_TRUE(kind != L"putref" ||
                        Put(object, name.c_str(), nothing, DISPATCH_PROPERTYPUTREF) == S_OK);
        }
    }
}

TEST(ByName, ArgumentsAreCoercedAndFoundByPlaceOrName) {
    const auto grid = NewGrid();
    const _variant_t leftOut(DISP_E_PARAMNOTFOUND, VT_ERROR);
    Put(grid, L"Id", 7);
    EXPECT_EQ(IdOf(grid, L"CLIP"), IdOf(grid, L"Clip"));
    EXPECT_EQ(IdOf(grid, L"Extent"), DISPID_UNKNOWN);
    EXPECT_TRUE(Invoke(grid, DISPATCH_METHOD | DISPATCH_PROPERTYGET, L"TileCountX").Is(4L));
    using Arguments = std::vector<_variant_t>;
    for (const auto& [arguments, code, wrong] : {std::tuple{Arguments{1}, DISP_E_PARAMNOTOPTIONAL, 99U},
                                                 {Arguments{1, 1, 1}, DISP_E_BADPARAMCOUNT, 99U},
                                                 {Arguments{1, L"one"}, DISP_E_TYPEMISMATCH, 0U},
                                                 {Arguments{L"one", 1}, DISP_E_TYPEMISMATCH, 1U},
                                                 {Arguments{1, 3e9}, DISP_E_OVERFLOW, 0U}}) {
        const Answer answer = Call(grid, L"GetTileID", arguments);
        EXPECT_EQ(std::pair(answer.code, answer.wrong), std::pair(code, wrong));
    }
    EXPECT_TRUE(Call(grid, L"GetTileID", {L"2", 1.4}).Is(L"grp1"));
    EXPECT_TRUE(Call(grid, L"GetTileID", {2.5, 1}).Is(L"grp1")) << "half to even";
    constexpr const wchar_t* kName = L"GetTileTStream";
    EXPECT_TRUE(Call(grid, kName, {2, 1}).Is(L"7grp1"));
    EXPECT_TRUE(Call(grid, kName, {2, 1, leftOut}).Is(L"7grp1"));
    EXPECT_TRUE(Invoke(grid, DISPATCH_METHOD, kName, {1, 2, L"b"}, {2, 0, 1}).Is(L"bgrp1"));
    EXPECT_EQ(Invoke(grid, DISPATCH_METHOD, kName, {1, 2}, {2, 2}).code, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(Call(grid, L"Clone", {leftOut}).value.vt, VT_DISPATCH);
}

/// Variables of every kind get the tile's numbers back, in the type that they have.
TEST(ByName, NumbersAreWrittenBack) {
    const auto grid = NewGrid();
    _variant_t point = NewPoint(600, 300, 500, 200);
    const auto inside = [&](const _variant_t& x, const _variant_t& y) {
        return Call(grid, L"IsInside", {x, y, To(VT_DISPATCH, &point.pdispVal)}).Is(true);
    };
    for (const VARTYPE type : {VT_I4, VT_I2, VT_R8, VT_BSTR, VT_I8, VT_INT, VT_I1, VT_DECIMAL}) {
        _variant_t x(-1L), y(-1L);
        x.ChangeType(type), y.ChangeType(type);
        const auto place = [&](_variant_t& v) -> void* {
            return type == VT_DECIMAL ? &v.decVal : static_cast<void*>(&v.lVal);
        };
        EXPECT_TRUE(inside(To(type, place(x)), To(type, place(y)))) << type;
        EXPECT_EQ(std::pair(static_cast<long>(x), static_cast<long>(y)), std::pair(3L, 2L)) << type;
    }
    long number = -1;
    _variant_t any = short{-1}, same = L"3", handedOn = To(VT_I4, &number);
    EXPECT_TRUE(inside(To(VT_VARIANT, &any), -1));
    EXPECT_EQ(any, _variant_t(3L));
    EXPECT_TRUE(inside(To(VT_VARIANT, &handedOn), -1));
    EXPECT_EQ(number, 3);
    EXPECT_TRUE(inside(To(VT_VARIANT, &same), 2));
    EXPECT_EQ(same, _variant_t(L"3")) << "a number that is not changed leaves the variable's type alone";
    EXPECT_EQ(References(point.pdispVal), 1U);
}

/// A failure inside the error report's own writing reaches the caller, with number, text and source.
TEST(ByName, AFailingCallTellsNumberTextAndSource) {
    const Ref<IDispatch> image(L"Orvo_Tile.clsTileImage");
    const std::wstring folder = TempFolder();
    SetEnvironmentVariableW(L"TEMP", L"C:\\no\\such\\folder");
    const Answer answer = Invoke(image, DISPATCH_PROPERTYPUT, L"TileWidth", {5}, {DISPID_PROPERTYPUT});
    SetEnvironmentVariableW(L"TEMP", folder.c_str());
    EXPECT_EQ(answer.code, DISP_E_EXCEPTION);
    EXPECT_EQ(answer.exception.scode, static_cast<SCODE>(0x800A004C));
    EXPECT_TRUE(std::wstring(_bstr_t(answer.exception.bstrDescription)).starts_with(L"Path not found"));
    EXPECT_STREQ(_bstr_t(answer.exception.bstrSource), L"Orvo_Tile.clsTileImage");
    // Any other failure is the procedure's own affair: logged, answered by the policy, and the call succeeds.
    const std::string report = Reported([&] { EXPECT_EQ(Put(image, L"TileWidth", 5), S_OK); });
    EXPECT_THAT(report, testing::AllOf(testing::HasSubstr("91"), testing::HasSubstr("TileWidth [LET]")));
}

}  // namespace
