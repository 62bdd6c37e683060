// Automation objects as the component's interfaces, and the way back.
#include <cmath>

#include "platform/windows/Platform.h"
#include "platform/windows/automation/EnvelopeObject.h"
#include "platform/windows/automation/HostObjects.h"
#include "platform/windows/system/WideText.h"
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
    e->XMin(5);
    e->Width(10);
    Check(e->IsEmpty() && std::isnan(e->YMin()), "one axis alone makes no rectangle");
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
    Check(ObjectOf(e).Get() == ObjectOf(e).Get() && ObjectOf(e).Get() != ObjectOf(copy).Get());
    Equal(Edges(*EnvelopeOf(ObjectOf(e).Get())), Edges(*e));
    Equal(static_cast<int>(GeometryOf(ObjectOf(e).Get())->GeometryType()), 5);
    Check(EnvelopeOf(nullptr) == nullptr && DispatchOf(std::shared_ptr<IEnvelope>()) == nullptr);

    const auto tiles = platform.newDictionary();
    tiles->Add("ä☕", e);
    tiles->Add("Ä☕", nullptr);
    Fails(457, "", [&] { tiles->Add("ä☕", e); });
    Check(tiles->Exists("ä☕") && tiles->Item("a") == nullptr && tiles->Item("Ä☕") == nullptr);
    Equal(tiles->Count(), 2);
    Equal(tiles->Keys().at(0), "ä☕");
    Check(ObjectOf(tiles->Item("ä☕")).Get() == ObjectOf(e).Get(), "items keep their identity");
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

template <class T>
Member Holding(const wchar_t* name, T value) {
    return Property(name, [value] { return Value(value); });
}

void CheckLayers() {
    int clips = 0;
    const auto point = Made(
        {Holding(L"X", 2.5),
         Holding(L"Y", 4.0),
         Holding(L"GeometryType", Long{1}),
         Holding(L"IsEmpty", false),
         {L"Clone", [](const Arguments&) { return Value::Adopt(new Host({})); }},
         {L"Within", [](const Arguments& a) { return Value(!a.At(0).AsObject()); }},
         {L"Clip", [&](const Arguments& a) { return Value(Long{clips += static_cast<int>(a.Count())}); }}});
    const auto geometry = GeometryOf(point.Get());
    Equal(As<IPoint>(geometry)->X(), 2.5);
    Check(geometry->GeometryType() == GeometryType::Point && !geometry->IsEmpty());
    const auto relation = As<IRelationalOperator>(geometry);
    Check(relation->Within(nullptr) && !relation->Within(NewEnvelope()));
    Fails(438, "Overlaps", [&] { static_cast<void>(relation->Overlaps(nullptr)); });
    As<ITopologicalOperator>(geometry)->Clip(NewEnvelope());
    Equal(clips, 1);
    Check(Value::Adopt(DispatchOf(As<IClone>(geometry)->Clone())).AsObject().Get() != point.Get());

    const auto area = ObjectOf(NewEnvelope());
    const auto raster = Made({Holding(L"Height", Long{6}), Holding(L"MeanCellSize", point.Get())});
    const auto layer = Made({Holding(L"FilePath", std::string("C:\\ä.png")), Holding(L"Raster", raster.Get()),
                             Holding(L"AreaOfInterest", area.Get())});
    const auto wrapped = RasterLayerOf(layer.Get());
    Equal(wrapped->FilePath(), "C:\\ä.png");
    Equal(wrapped->Raster()->Height(), 6);
    Equal(wrapped->Raster()->MeanCellSize().Y, 4.0);
    Check(!wrapped->IsInGeodatabase(), "a layer that does not know the question");
    Check(LayerOf(layer.Get())->AreaOfInterest()->IsEmpty());
    Check(Value::Adopt(DispatchOf(wrapped)).Raw().pdispVal == layer.Get());
}

std::string shown;

void CheckStatus() {
    // A bare table of functions: whoever calls a place that is not filled ends the program.
    const auto ask = [](void* self, REFIID, void** object) -> HRESULT { return *object = self, S_OK; };
    const auto count = [](void*) -> ULONG { return 1; };
    const auto message = [](void*, BSTR) { return static_cast<HRESULT>(0x800A7918); };
    const auto progress = [](void*, BSTR text, LONG most, VARIANT_BOOL step) -> HRESULT {
        shown = Utf8(text) + std::to_string(most) + (step == VARIANT_TRUE ? "!" : ".");
        return S_OK;
    };
    const auto place = [](auto lambda) { return reinterpret_cast<void*>(+lambda); };
    const void* places[12]{place(ask), place(count), place(count)};
    places[10] = place(message);
    places[11] = place(progress);
    const void* table = places;
    const auto byTable = StatusDisplayOf(reinterpret_cast<IDispatch*>(&table), IID_IStream);
    byTable->ShowProgress("Tiling ä", 18, true);
    Equal(shown, "Tiling ä18!");
    Fails(31000, "ShowMessage", [&] { byTable->ShowMessage("m"); });

    const auto named =
        Made({{L"ShowMessage", [&](const Arguments& a) { return shown = a.At(0).AsText(), Value(); }}});
    StatusDisplayOf(named.Get(), IID_IStream)->ShowMessage("by name");
    Equal(shown, "by name");
    Check(StatusDisplayOf(nullptr, IID_IStream) == nullptr);
}

}  // namespace

void CheckHostObjects() {
    const long before = ServerUse::Count();
    {
        const auto platform = MakePlatform();
        CheckEnvelopes(platform);
        CheckFailures();
        CheckLayers();
        CheckStatus();
    }
    Equal(ServerUse::Count(), before);
}

}  // namespace orvo::checks
