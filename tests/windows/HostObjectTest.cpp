// Automation objects as the component's interfaces, and the way back.
#include <gmock/gmock.h>

#include "platform/windows/Platform.h"
#include "platform/windows/automation/EnvelopeObject.h"
#include "platform/windows/automation/HostObjects.h"
#include "platform/windows/system/WideText.h"
#include "tests/Failure.h"

namespace orvo::windows {
namespace {

/// A host's object whose members are told by the test.
Value NewHost(std::vector<Member> members) {
    struct Host final : ScriptObject {
        explicit Host(std::vector<Member> own) {
            for (Member& member : own) Add(std::move(member));
        }
    };
    return Value::Adopt(new Host(std::move(members)));
}

template <class T>
Member Holding(const wchar_t* name, T value) {
    return Property(name, [value] { return Value(value); });
}

Ref<IDispatch> ObjectOf(const std::shared_ptr<IEnvelope>& envelope) {
    return Value::Adopt(DispatchOf(envelope)).AsObject();
}

struct HostObjects : testing::Test {
    ~HostObjects() override { EXPECT_EQ(ServerUse::Count(), before_); }

  private:
    const long before_ = ServerUse::Count();
};

TEST_F(HostObjects, KeepTheirIdentityOnTheWayBack) {
    const auto platform = MakePlatform();
    const auto e = platform.newEnvelope();
    EXPECT_EQ(ObjectOf(e).Get(), ObjectOf(e).Get());
    EXPECT_NE(ObjectOf(e).Get(), ObjectOf(e->Clone()).Get());
    EXPECT_EQ(ObjectOf(EnvelopeOf(ObjectOf(e).Get())).Get(), ObjectOf(e).Get());
    EXPECT_EQ(GeometryOf(ObjectOf(e).Get())->GeometryType(), GeometryType::Envelope);
    EXPECT_TRUE(!EnvelopeOf(nullptr) && !DispatchOf(std::shared_ptr<IEnvelope>()));
    const auto tiles = platform.newDictionary();
    tiles->Add("t", e);
    EXPECT_EQ(ObjectOf(tiles->Item("t")).Get(), ObjectOf(e).Get());
}

TEST_F(HostObjects, FailWithTheirOwnNumberAndText) {
    const auto bad =
        NewHost({{L"XMin", [](const Arguments&) -> Value { throw RuntimeError(31000, "Kein Rand ☕"); }},
                 Holding(L"XMax", std::string("twelve"))})
            .AsObject();
    const auto envelope = EnvelopeOf(bad.Get());
    EXPECT_EQ(FailureOf([&] { envelope->XMin(); }), "31000 Kein Rand ☕");
    EXPECT_THAT(FailureOf([&] { envelope->YMin(); }), testing::ContainsRegex("^438 .*YMin"));
    EXPECT_THAT(FailureOf([&] { envelope->XMax(1); }), testing::ContainsRegex("^438 .*XMax"));
    EXPECT_THAT(FailureOf([&] { envelope->XMax(); }), testing::StartsWith("13 "));
    EXPECT_THAT(FailureOf([] { Automation().Get(L"XMin"); }), testing::StartsWith("91 "));
}

TEST_F(HostObjects, AreAskedByName) {
    int clips = 0;
    const auto point =
        NewHost({Holding(L"X", 2.5),
                 Holding(L"Y", 4.0),
                 Holding(L"GeometryType", Long{1}),
                 Holding(L"IsEmpty", false),
                 {L"Clone", [](const Arguments&) { return NewHost({}); }},
                 {L"Within", [](const Arguments& a) { return Value(!a.At(0).AsObject()); }},
                 {L"Clip",
                  [&](const Arguments& a) { return Value(Long{clips += static_cast<int>(a.Count())}); }}})
            .AsObject();
    const auto geometry = GeometryOf(point.Get());
    EXPECT_EQ(As<IPoint>(geometry)->X(), 2.5);
    EXPECT_TRUE(geometry->GeometryType() == GeometryType::Point && !geometry->IsEmpty());
    const auto relation = As<IRelationalOperator>(geometry);
    EXPECT_TRUE(relation->Within(nullptr) && !relation->Within(NewEnvelope()));
    EXPECT_THAT(FailureOf([&] { relation->Overlaps(nullptr); }), testing::ContainsRegex("^438 .*Overlaps"));
    As<ITopologicalOperator>(geometry)->Clip(NewEnvelope());
    EXPECT_EQ(clips, 1);
    EXPECT_NE(Value::Adopt(DispatchOf(As<IClone>(geometry)->Clone())).AsObject().Get(), point.Get());
    const auto host = NewHost({Holding(L"FilePath", std::string("C:\\ä.png"))}).AsObject();
    const auto layer = RasterLayerOf(host.Get());
    EXPECT_EQ(layer->FilePath(), "C:\\ä.png");
    EXPECT_FALSE(layer->IsInGeodatabase()) << "it does not know the question";
    EXPECT_EQ(Value::Adopt(DispatchOf(layer)).Raw().pdispVal, host.Get());
}

}  // namespace
}  // namespace orvo::windows
