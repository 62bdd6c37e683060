// Automation objects as the component's interfaces, and the way back.
#include <cmath>

#include "platform/windows/EnvelopeObject.h"
#include "platform/windows/HostObjects.h"
#include "platform/windows/Platform.h"
#include "platform/windows/WindowCollection.h"
#include "tests/windows/Checks.h"

namespace orvo::checks {
namespace {

using namespace orvo::windows;

/// A host's object whose members are told by the check.
class Host final : public ScriptObject {
  public:
    explicit Host(std::vector<Member> members) {
        for (Member& member : members) Add(std::move(member));
    }
};

Ref<IDispatch> Made(std::vector<Member> members) {
    return Value::Adopt(new Host(std::move(members))).AsObject();
}

Ref<IDispatch> ObjectOf(const std::shared_ptr<IEnvelope>& envelope) {
    return Value::Adopt(DispatchOf(envelope)).AsObject();
}

std::string Edges(const IEnvelope& e) {
    std::string text;
    for (const double edge : {e.XMin(), e.YMin(), e.XMax(), e.YMax()})
        text += std::to_string(std::lround(edge)) + " ";
    return text;
}

void CheckEnvelopes(const platform::Platform& platform) {
    const auto e = platform.newEnvelope();
    Check(e->IsEmpty() && std::isnan(e->XMin()));
    Equal(e->Height(), 0.0);
    e->XMin(5);
    e->Width(10);
    Check(e->IsEmpty(), "one axis alone makes no rectangle");
    e->YMin(3);
    e->Depth(7);
    Equal(e->Depth(), 7.0);
    e->Height(4);
    Equal(Edges(*e), "5 3 15 7 ");
    e->XMin(20);
    Equal(Edges(*e), "15 3 20 7 ");
    const auto copy = e->Clone();
    const auto other = platform.newEnvelope();
    other->XMin(0), other->XMax(17), other->YMin(0), other->YMax(5);
    copy->Intersect(*other);
    Equal(Edges(*copy), "15 3 17 5 ");
    Equal(Edges(*e), "15 3 20 7 ");
    Check(ObjectOf(e).Get() == ObjectOf(e).Get(), "the same object on every call");
    Check(ObjectOf(e).Get() != ObjectOf(copy).Get());
    Equal(Edges(*EnvelopeOf(ObjectOf(e).Get())), Edges(*e));
    Equal(static_cast<int>(GeometryOf(ObjectOf(e).Get())->GeometryType()), 5);
    Check(EnvelopeOf(nullptr) == nullptr && DispatchOf(std::shared_ptr<IEnvelope>()) == nullptr);
}

void CheckDictionary(const platform::Platform& platform) {
    const auto tiles = platform.newDictionary();
    const auto tile = platform.newEnvelope();
    tiles->Add("b", tile);
    tiles->Add("B", nullptr);
    tiles->Add("ä☕", platform.newEnvelope());
    Fails(457, "", [&] { tiles->Add("b", tile); });
    Equal(tiles->Count(), 3);
    Check(tiles->Exists("ä☕") && !tiles->Exists("a"));
    Check(tiles->Item("a") == nullptr && tiles->Item("B") == nullptr);
    Equal(tiles->Count(), 3);
    Check(ObjectOf(tiles->Item("b")).Get() == ObjectOf(tile).Get(), "items keep their identity");
    Equal(tiles->Keys().at(2), "ä☕");
    Check(Value::Adopt(DispatchOf(tiles)).Raw().pdispVal == Value::Adopt(DispatchOf(tiles)).Raw().pdispVal);
}

void CheckFailures() {
    const auto bad =
        Made({{L"XMin", [](const Arguments&) -> Value { throw RuntimeError(31000, "Kein Rand ☕"); }},
              Property(L"XMax", [] { return std::string("twelve"); })});
    const auto envelope = EnvelopeOf(bad.Get());
    Fails(31000, "Kein Rand ☕", [&] { static_cast<void>(envelope->XMin()); });
    Fails(438, "YMin", [&] { static_cast<void>(envelope->YMin()); });
    Fails(438, "XMax", [&] { envelope->XMax(1); });
    Fails(13, "", [&] { static_cast<void>(envelope->XMax()); });
    Fails(91, "", [] { static_cast<void>(Automation().Get(L"XMin")); });
}

void CheckLayers() {
    int clips = 0;
    const auto point = Made(
        {Property(L"X", [] { return 2.5; }),
         Property(L"Y", [] { return 4.0; }),
         Property(L"GeometryType", [] { return Long{1}; }),
         Property(L"IsEmpty", [] { return false; }),
         {L"Clone", [](const Arguments&) { return Value::Adopt(new Host({})); }},
         {L"Within", [](const Arguments& a) { return Value(!a.At(0).AsObject()); }},
         {L"Clip", [&](const Arguments& a) { return Value(Long{clips += static_cast<int>(a.Count())}); }}});
    const auto geometry = GeometryOf(point.Get());
    Equal(As<IPoint>(geometry)->X(), 2.5);
    Check(geometry->GeometryType() == GeometryType::Point && !geometry->IsEmpty());
    Check(As<IRelationalOperator>(geometry)->Within(nullptr) &&
          !As<IRelationalOperator>(geometry)->Within(NewEnvelope()));
    Fails(438, "Overlaps", [&] { static_cast<void>(As<IRelationalOperator>(geometry)->Overlaps(nullptr)); });
    As<ITopologicalOperator>(geometry)->Clip(NewEnvelope());
    Equal(clips, 1);
    Check(Value::Adopt(DispatchOf(As<IClone>(geometry)->Clone())).AsObject().Get() != point.Get());

    const auto raster =
        Made({Property(L"Width", [] { return Long{9}; }), Property(L"Height", [] { return Long{6}; }),
              Property(L"MeanCellSize", [&] { return Value(point.Get()); })});
    const auto layer =
        Made({Property(L"FilePath", [] { return std::string("C:\\a.png"); }),
              Property(L"Raster", [&] { return Value(raster.Get()); }),
              Property(L"AreaOfInterest", [] { return Value::Adopt(DispatchOf(NewEnvelope())); })});
    const auto wrapped = RasterLayerOf(layer.Get());
    Equal(wrapped->FilePath(), "C:\\a.png");
    Equal(wrapped->Raster()->Height(), 6);
    Equal(wrapped->Raster()->MeanCellSize().Y, 4.0);
    Check(!wrapped->IsInGeodatabase(), "a layer that does not know the question");
    Check(LayerOf(layer.Get())->AreaOfInterest()->IsEmpty());
    Check(Value::Adopt(DispatchOf(wrapped)).Raw().pdispVal == layer.Get());
}

/// Has a table of functions beside its names.
struct StatusTable : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE First() = 0;
    virtual HRESULT STDMETHODCALLTYPE Second() = 0;
    virtual HRESULT STDMETHODCALLTYPE Third() = 0;
    virtual HRESULT STDMETHODCALLTYPE ShowMessage(BSTR text) = 0;
    virtual HRESULT STDMETHODCALLTYPE ShowProgress(BSTR text, LONG maxValue, VARIANT_BOOL step) = 0;
};
constexpr IID kStatus{0x5d1e0a4b, 0x7a11, 0x4b7e, {1, 2, 3, 4, 5, 6, 7, 8}};

class BoundStatus final : public StatusTable {
  public:
    std::wstring shown;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = ::IsEqualIID(id, kStatus) ? static_cast<StatusTable*>(this) : nullptr;
        return *object == nullptr ? E_NOINTERFACE : S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE First() override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE Second() override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE Third() override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE ShowMessage(BSTR text) override {
        return shown = text, static_cast<HRESULT>(0x800A7918);
    }
    HRESULT STDMETHODCALLTYPE ShowProgress(BSTR text, LONG maxValue, VARIANT_BOOL step) override {
        shown = text + std::to_wstring(maxValue) + (step == VARIANT_TRUE ? L"!" : L".");
        return S_OK;
    }
};

void CheckStatus() {
    BoundStatus bound;
    const auto byTable = StatusDisplayOf(&bound, kStatus);
    byTable->ShowProgress("Tiling ä", 18, true);
    Check(bound.shown == L"Tiling ä18!");
    Fails(31000, "ShowMessage", [&] { byTable->ShowMessage("m"); });
    std::string shown;
    const auto named = Made({{L"ShowProgress", [&](const Arguments& a) {
                                  shown = a.At(0).AsText() + std::to_string(a.At(1).AsLong()) +
                                          (a.At(2).AsBool() ? "!" : ".");
                                  return Value();
                              }}});
    StatusDisplayOf(named.Get(), kStatus)->ShowProgress("", 0, false);
    Equal(shown, "0.");
    Check(StatusDisplayOf(nullptr, kStatus) == nullptr);
}

void CheckCollection() {
    const Ref<IDispatch> window = Value::Adopt(NewWindowCollection({7, 8, 30, 40})).AsObject();
    Check(WindowOfCollection(window.Get()) == PixelWindow{7, 8, 30, 40});
    Fails(9, "", [&] { static_cast<void>(Automation(window.Get()).Call(L"Item", {Long{5}})); });
    const auto enumerator =
        Query<IEnumVARIANT>(Automation(window.Get()).Get(L"_NewEnum").Raw().punkVal, IID_IEnumVARIANT);
    VARIANT numbers[5]{};
    ULONG fetched = 0;
    Equal(enumerator->Next(5, numbers, &fetched), S_FALSE);
    Equal(fetched, 4UL);
    Equal(numbers[3].lVal, 40);
}

}  // namespace

void CheckHostObjects() {
    const long before = LiveObjects();
    {
        const auto platform = MakePlatform();
        CheckEnvelopes(platform);
        CheckDictionary(platform);
        CheckFailures();
        CheckLayers();
        CheckStatus();
        CheckCollection();
    }
    Equal(LiveObjects(), before);
}

}  // namespace orvo::checks
