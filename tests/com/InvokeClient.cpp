// A client that knows names only: it makes the calls that interpreters make.
#include <initializer_list>

#include "HostObject.h"

namespace {

/// A value, freed at the end.
struct Value : VARIANT {
    Value() { VariantInit(this); }
    Value(long number) {
        vt = VT_I4;
        lVal = number;
    }
    Value(double number) {
        vt = VT_R8;
        dblVal = number;
    }
    Value(const wchar_t* text) {
        vt = VT_BSTR;
        bstrVal = SysAllocString(text);
    }
    Value(IDispatch* object) {
        vt = VT_DISPATCH;
        pdispVal = object;
        if (object != nullptr) object->AddRef();
    }
    Value(const Value& other) : Value() {
        VARIANT source = other;
        VariantCopy(this, &source);
    }
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(this); }

    static Value LeftOut() {
        Value made;
        made.vt = VT_ERROR;
        made.scode = DISP_E_PARAMNOTFOUND;
        return made;
    }
    static Value To(VARTYPE type, void* variable) {
        Value made;
        made.vt = static_cast<VARTYPE>(type | VT_BYREF);
        made.byref = variable;
        return made;
    }
    bool operator==(const wchar_t* text) const {
        return vt == VT_BSTR && std::wstring(bstrVal == nullptr ? L"" : bstrVal) == text;
    }
    bool operator==(long number) const { return vt == VT_I4 && lVal == number; }
};

/// One object by name; keeps what the last call left behind.
class Late {
  public:
    explicit Late(const wchar_t* progId) {
        CLSID id;
        if (SUCCEEDED(CLSIDFromProgID(progId, &id)))
            CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                             reinterpret_cast<void**>(&object_));
    }
    Late(const Late&) = delete;
    Late& operator=(const Late&) = delete;
    ~Late() {
        if (object_ != nullptr) object_->Release();
    }
    IDispatch* Get() const { return object_; }

    DISPID IdOf(const wchar_t* name) const {
        std::wstring text = name;
        LPOLESTR names = text.data();
        DISPID id = DISPID_UNKNOWN;
        object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
        return id;
    }
    HRESULT Do(WORD flags, const wchar_t* name, std::initializer_list<Value> arguments,
               std::vector<DISPID> names = {}) {
        std::vector<VARIANT> list;
        for (const Value& argument : arguments) list.insert(list.begin(), argument);
        DISPPARAMS given{list.data(), names.data(), static_cast<UINT>(list.size()),
                         static_cast<UINT>(names.size())};
        VariantClear(&result);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrSource);
        exception = {};
        wrong = 99;
        return object_->Invoke(IdOf(name), IID_NULL, LOCALE_USER_DEFAULT, flags, &given, &result, &exception,
                               &wrong);
    }
    HRESULT Call(const wchar_t* name, std::initializer_list<Value> arguments = {}) {
        return Do(DISPATCH_METHOD, name, arguments);
    }
    HRESULT Get(const wchar_t* name) { return Do(DISPATCH_PROPERTYGET, name, {}); }
    HRESULT Put(const wchar_t* name, const Value& value) {
        return Do(DISPATCH_PROPERTYPUT, name, {value}, {DISPID_PROPERTYPUT});
    }
    HRESULT PutRef(const wchar_t* name, const Value& value) {
        return Do(DISPATCH_PROPERTYPUTREF, name, {value}, {DISPID_PROPERTYPUT});
    }

    Value result;
    EXCEPINFO exception{};
    UINT wrong = 99;

  private:
    IDispatch* object_ = nullptr;
};

void TestNames(Late& grid) {
    CHECK(grid.IdOf(L"CLIP") == grid.IdOf(L"Clip") && grid.IdOf(L"Clip") > 0);
    CHECK(grid.IdOf(L"Extent") == DISPID_UNKNOWN);
    std::wstring method = L"GetTileTStream", third = L"strID", first = L"lngNrX";
    LPOLESTR names[] = {method.data(), third.data(), first.data()};
    DISPID ids[3];
    CHECK(grid.Get()->GetIDsOfNames(IID_NULL, names, 3, 0, ids) == S_OK && ids[1] == 2 && ids[2] == 0);
    CHECK(grid.Get()->GetIDsOfNames(IID_IDispatch, names, 1, 0, ids) == DISP_E_UNKNOWNINTERFACE);
}

void TestKinds(Late& grid, Late& image, IDispatch* extent) {
    struct Kind {
        Late& object;
        const wchar_t* name;
        bool reads, writes;
    };
    const Kind kinds[] = {{grid, L"Id", false, true},
                          {grid, L"LayerExtent", false, true},
                          {grid, L"VectorLayer", false, true},
                          {grid, L"StatusObject", false, true},
                          {grid, L"TileCountX", true, true},
                          {grid, L"TileCountY", true, true},
                          {grid, L"TileWidth", false, true},
                          {grid, L"TileHeight", false, true},
                          {grid, L"TileCount", true, false},
                          {image, L"ClipEnvelope", false, true},
                          {image, L"TileObjectDict", true, false},
                          {image, L"GraphicFormat", false, true},
                          {image, L"GraphicConvertProg", false, true},
                          {image, L"GraphicQuality", false, true},
                          {image, L"StatusObject", false, true},
                          {image, L"SavePath", false, true},
                          {image, L"TileWidth", false, true},
                          {image, L"TileHeight", false, true}};
    grid.PutRef(L"LayerExtent", extent);
    for (const Kind& kind : kinds) {
        const HRESULT read = kind.object.Get(kind.name);
        Check((read == S_OK) == kind.reads && (kind.reads || read == DISP_E_MEMBERNOTFOUND), "reading");
        const bool takesObject = kind.object.Put(kind.name, 7L) == DISP_E_TYPEMISMATCH;
        const HRESULT written = takesObject ? kind.object.PutRef(kind.name, static_cast<IDispatch*>(nullptr))
                                            : kind.object.Put(kind.name, 7L);
        Check((written == S_OK) == kind.writes && (kind.writes || written == DISP_E_MEMBERNOTFOUND),
              "writing");
    }
    grid.PutRef(L"LayerExtent", extent);
    CHECK(grid.Put(L"LayerExtent", extent) == S_OK);  // as JScript puts objects
    CHECK(grid.Do(DISPATCH_METHOD | DISPATCH_PROPERTYGET, L"TileCountX", {}) == S_OK);
}

void TestArguments(Late& grid) {
    CHECK(grid.Call(L"GetTileID", {1L}) == DISP_E_PARAMNOTOPTIONAL);
    CHECK(grid.Call(L"GetTileID", {1L, 1L, 1L}) == DISP_E_BADPARAMCOUNT);
    CHECK(grid.Call(L"GetTileID", {1L, L"one"}) == DISP_E_TYPEMISMATCH && grid.wrong == 0);
    CHECK(grid.Call(L"GetTileID", {L"one", 1L}) == DISP_E_TYPEMISMATCH && grid.wrong == 1);
    CHECK(grid.Call(L"GetTileID", {1L, 3e9}) == DISP_E_OVERFLOW);
    CHECK(grid.Call(L"GetTileID", {L"2", 1.4}) == S_OK && grid.result == L"grp1");
    CHECK(grid.Call(L"GetTileID", {2.5, 1L}) == S_OK && grid.result == L"grp1");  // half to even
    CHECK(grid.Call(L"GetTileTStream", {2L, 1L}) == S_OK && grid.result == L"7grp1");
    CHECK(grid.Call(L"GetTileTStream", {2L, 1L, Value::LeftOut()}) == S_OK && grid.result == L"7grp1");
    // Named: the list runs backwards, names first.
    CHECK(grid.Do(DISPATCH_METHOD, L"GetTileTStream", {1L, 2L, L"b"}, {2, 0, 1}) == S_OK &&
          grid.result == L"bgrp1");
    CHECK(grid.Do(DISPATCH_METHOD, L"GetTileTStream", {1L, 2L}, {2, 2}) == DISP_E_PARAMNOTFOUND);
    CHECK(grid.Call(L"Clone", {Value::LeftOut()}) == S_OK && grid.result.vt == VT_DISPATCH);
    CHECK(grid.Call(L"InitializeTiles") == S_OK && grid.result.vt == VT_EMPTY);
}

/// Variables of every kind get the tile's numbers back, in the type that they have.
void TestWritingBack(Late& grid) {
    auto* point = (new HostObject)->With(L"GeometryType", 1L)->With(L"X", 600.0)->With(L"Y", 300.0);
    int asked = 0;
    point->Doing(L"Within", [&asked](const HostObject::Arguments& arguments, VARIANT* result) -> HRESULT {
        IDispatch* tile = arguments[0]->pdispVal;
        result->vt = VT_BOOL;
        result->boolVal =
            NumberOf(tile, L"XMin") == 500 && NumberOf(tile, L"YMin") == 200 ? VARIANT_TRUE : VARIANT_FALSE;
        ++asked;
        return S_OK;
    });
    IDispatch* object = point;
    long number = -1;
    short integer = -1;
    double real = -1;
    BSTR text = SysAllocString(L"-1");
    Value any(-1L);
    any.vt = VT_I2;
    any.iVal = -1;

    CHECK(grid.Call(L"IsInside", {Value::To(VT_I4, &number), Value::To(VT_I2, &integer), object}) == S_OK);
    CHECK(grid.result.vt == VT_BOOL && grid.result.boolVal == VARIANT_TRUE && number == 3 && integer == 2);
    CHECK(grid.Call(L"IsInside", {Value::To(VT_R8, &real), Value::To(VT_BSTR, &text),
                                  Value::To(VT_DISPATCH, &object)}) == S_OK);
    CHECK(real == 3 && std::wstring(text) == L"2" && object == point);
    integer = -1;
    CHECK(grid.Call(L"IsInside", {Value::To(VT_VARIANT, &any), Value::To(VT_I2, &integer), object}) == S_OK);
    CHECK(any == 3L && integer == 2);
    CHECK(grid.Call(L"IsInside", {-1L, -1L, object}) == S_OK && grid.result.boolVal == VARIANT_TRUE);

    // A number that is not changed leaves the variable's own type alone.
    Value third(L"3");
    CHECK(grid.Call(L"IsInside", {Value::To(VT_VARIANT, &third), 2L, object}) == S_OK && third == L"3");
    CHECK(asked == 5 && point->References() == 1);
    SysFreeString(text);
    point->Release();
}

/// A failure inside the error report's own writing reaches the caller, with number, text and source.
void TestFailingCall(Late& image) {
    const std::wstring folder = TempFolder();
    SetEnvironmentVariableW(L"TEMP", L"C:\\no\\such\\folder");
    const HRESULT code = image.Put(L"TileWidth", 5L);
    SetEnvironmentVariableW(L"TEMP", folder.c_str());
    CHECK(code == DISP_E_EXCEPTION && image.exception.scode == static_cast<SCODE>(0x800A004C));
    CHECK(image.exception.bstrDescription != nullptr &&
          std::wstring(image.exception.bstrDescription).find(L"Path not found") == 0);
    CHECK(image.exception.bstrSource != nullptr &&
          std::wstring(image.exception.bstrSource) == L"Orvo_Tile.clsTileImage");
    // Any other failure is the procedure's own affair: logged, answered by the policy, and the call succeeds.
    const std::size_t before = Log().size();
    CHECK(image.Put(L"TileWidth", 5L) == S_OK);
    const std::string report = Log().substr(before);
    CHECK(report.find("91") != std::string::npos && report.find("TileWidth [LET]") != std::string::npos);
}

/// A status object that fails: the host's own number and text stand in the report.
void TestErrorSink(Late& image) {
    HostObject* layer = NewRasterLayer(L"C:\\windows\\win.ini", 4, 4);
    auto* sink = new HostObject;
    int shown = 0;
    sink->Doing(L"ShowProgress", [&shown](const HostObject::Arguments&, VARIANT*) -> HRESULT {
        ++shown;
        return static_cast<HRESULT>(0x800A03E9);  // 1001
    });
    sink->Doing(L"ShowMessage", [](const HostObject::Arguments&, VARIANT*) -> HRESULT { return S_OK; });
    const auto run = [&](const wchar_t* policy) {
        SetEnvironmentVariableW(L"ORVO_TILE_ON_ERROR", policy);
        const std::size_t before = Log().size();
        CHECK(image.PutRef(L"StatusObject", sink) == S_OK);
        CHECK(image.Put(L"SavePath", TempFolder().c_str()) == S_OK);
        CHECK(image.Call(L"ImageLayer", {layer}) == S_OK);
        CHECK(image.Put(L"TileWidth", 2L) == S_OK && image.Put(L"TileHeight", 2L) == S_OK);
        CHECK(image.Call(L"Tile") == S_OK && image.result.vt == VT_BOOL &&
              image.result.boolVal == VARIANT_TRUE);
        return Log().substr(before);
    };
    for (const wchar_t* policy : {L"next", L"leave"}) {
        shown = 0;
        const std::string report = run(policy);
        CHECK(report.find("1001") != std::string::npos &&
              report.find("CreateMessageText") != std::string::npos);
        CHECK(shown >= 6);
    }
    SetEnvironmentVariableW(L"ORVO_TILE_ON_ERROR", L"leave");
    CHECK(image.PutRef(L"StatusObject", static_cast<IDispatch*>(nullptr)) == S_OK && sink->References() == 1);
    sink->Release();
    CHECK(image.Call(L"ImageLayer", {static_cast<IDispatch*>(nullptr)}) == S_OK && layer->References() == 1);
    layer->Release();
}

}  // namespace

int main() {
    CoInitialize(nullptr);
    {
        HostObject* extent = NewEnvelope(0, 0, 1000, 600);
        Late grid(L"Orvo_Tile.clsTileVector");
        Late image(L"Orvo_Tile.clsTileImage");
        CHECK(grid.Get() != nullptr && image.Get() != nullptr);
        TestNames(grid);
        TestKinds(grid, image, extent);
        CHECK(grid.Put(L"TileCountX", 1L) == S_OK && grid.Put(L"TileCountY", 1L) == S_OK);
        CHECK(grid.Put(L"TileWidth", 250L) == S_OK && grid.Put(L"TileHeight", 200L) == S_OK);
        CHECK(grid.Call(L"InitializeTiles") == S_OK);
        TestArguments(grid);
        for (long y = 1; y <= 3; ++y) {
            for (long x = 1; x <= 4; ++x) {
                grid.Call(L"GetTileExtent", {x, y});
                SetNumber(grid.result.pdispVal, L"Height", 200);
            }
        }
        TestWritingBack(grid);
        TestFailingCall(image);
        TestErrorSink(image);
        extent->Release();
    }
    CHECK(HostObject::alive == 0);
    CoUninitialize();
    return Summary();
}
