// Every platform call of the grid's larger procedures fails once and for good, under every answer.
#include <cstdio>
#include <functional>
#include <optional>

#include "tests/component/VectorFixture.h"

namespace orvo {
namespace {

class VectorFaultTest : public VectorTest {
  protected:
    struct Operation {
        const char* label;
        std::function<std::string()> act;  ///< gives what came of it as text
        std::string undisturbed;
        std::string left = "none";  ///< where the user leaves it, "" for any
    };
    /// A world and a 3 × 2 grid whose tile (3, 1) reaches over (3, 2), so that a point there is searched for.
    void Prepare() {
        grid.reset();
        world = fake::World::Make();
        platform::Install(world->MakePlatform());
        SetErrorDialog(std::make_unique<Ferrow>());
        BuildGrid();
        grid->GetTileExtent(3, 2)->Height(10);
        grid->GetTileExtent(3, 1)->Height(100);
        line = fake::MakePolyline(world, {{{50, 30}, {150, 30}, {150, 100}}});
        points = fake::MakeMultipoint(world, {{50, 30}, {150, 30}});
    }
    /// Ends the faults; what follows only looks.
    void Heal() {
        calls = world->Calls();
        world->FailNothing();
        world->answer = nullptr;
    }
    std::string Tiles(const std::shared_ptr<clsTileVector>& tiles) {
        Heal();
        std::string text = tiles ? "" : "none";
        for (Long n = 0; tiles && n < 6; ++n) {
            text += tiles->GetTileID(n % 3 + 1, n / 3 + 1) + " " +
                    Shown(tiles->GetTileExtent(n % 3 + 1, n / 3 + 1)) + "; ";
        }
        return text;
    }
    std::string Clip(const std::shared_ptr<IGeometry>& geometry) {
        const auto result = grid->Clip(2, 1, geometry);
        Heal();
        return Shown(result);
    }
    std::string Find(const Point& point) {
        Long x = -1;
        Long y = -1;
        const bool inside = grid->IsInside(x, y, fake::MakePoint(world, point));
        Heal();
        return inside ? std::to_string(x) + "," + std::to_string(y) : "none";
    }
    void CheckOne(const Operation& operation, long n, fake::Lasting lasting, Integer answer);

    std::shared_ptr<IGeometry> line, points;
    long calls = 0;
    long cases = 0;
};

void VectorFaultTest::CheckOne(const Operation& operation, long n, fake::Lasting lasting, Integer answer) {
    ++cases;
    SCOPED_TRACE(testing::Message() << operation.label << ", call " << n
                                    << (lasting == fake::Lasting::Once ? " once" : " for good") << ", answer "
                                    << answer);
    Prepare();
    constexpr std::size_t kPatience = 4;  // retries of a lasting failure before leaving
    world->answer = [&](const FailureView&) {
        return answer == kRetry && world->failures.size() > kPatience ? kLeave : answer;
    };
    world->FailCall(n, lasting);
    std::optional<std::string> outcome;
    try {
        outcome = operation.act();
    } catch (const RuntimeError&) {
        Heal();
    }
    const std::string failed = world->FailedCall();
    ASSERT_FALSE(failed.empty());
    const bool aboutHandler = failed.starts_with("Clock.") || failed.starts_with("Desktop.");
    // Nothing passes the procedure but a failure of its own entry or of its handler.
    EXPECT_TRUE(outcome || aboutHandler || lasting == fake::Lasting::ForGood) << failed;
    EXPECT_TRUE(aboutHandler || !world->failures.empty()) << "a failure that nobody saw: " << failed;
    EXPECT_EQ(TileVectorProbe::Of(*grid), (State{100, 50, 3, 2}));
    EXPECT_EQ(Shown(line) + Shown(points), "50,30 150,30 150,100 /50,30 /150,30 /") << "the input stays";
    if (outcome && lasting == fake::Lasting::Once && answer == kRetry && !aboutHandler) {
        EXPECT_EQ(*outcome, operation.undisturbed) << "a retry loses nothing: " << failed;
    }
    if (outcome && answer == kLeave && !world->failures.empty() && ShownLabel(0) == operation.label &&
        !operation.left.empty()) {
        EXPECT_EQ(*outcome, operation.left) << "left before there was a result";
    }
    if (outcome && answer == kLeave) {
        EXPECT_EQ(outcome->find(" 0 0;"), std::string::npos) << "no tile gets half an envelope: " << *outcome;
    }
    Do("i0");
    grid->GetTileExtent(1, 1)->Height(50);
    EXPECT_EQ(Find({50, 30}), "1,1") << "usable afterwards";
}

TEST_F(VectorFaultTest, NoFailureOfThePlatformCrashesAProcedureOrPassesUnseen) {
    const std::string tiles =
        "grp0 10 20 100 0 50; grp1 110 20 100 0 50; grp2 210 20 100 0 50; "
        "grp3 10 70 100 0 50; grp4 110 70 100 0 50; grp5 210 70 100 0 50; ";
    for (const Operation& operation :
         std::vector<Operation>{{"InitializeTiles", [&] { return Do("i0"), Tiles(grid); }, tiles, ""},
                                {"Clip", [&] { return Clip(line); }, "110,30 150,30 150,70 /"},
                                {"Clip", [&] { return Clip(points); }, "150,30 /"},
                                {"IsInside",
                                 [&] {
                                     return Find({150, 30});
                                 },
                                 "2,1"},
                                {"IsInside",
                                 [&] {
                                     return Find({250, 100});
                                 },
                                 "3,1", ""},
                                {"Clone", [&] { return Tiles(grid->Clone()); }, tiles}}) {
        Prepare();
        world->FailCall(0, fake::Lasting::Once);
        ASSERT_EQ(operation.act(), operation.undisturbed);
        const long last = calls;
        for (const auto lasting : {fake::Lasting::Once, fake::Lasting::ForGood}) {
            for (const Integer answer : {kRetry, kNext, kLeave}) {
                for (long n = 1; n <= last; ++n) CheckOne(operation, n, lasting, answer);
            }
        }
        if (HasFailure()) break;
    }
    RecordProperty("cases", static_cast<int>(cases));
    std::printf("vector fault matrix: %ld cases\n", cases);
}

}  // namespace
}  // namespace orvo
