// Every platform call of the grid's larger procedures fails once and for good, under every answer.
#include <cstdio>
#include <functional>

#include "tests/component/VectorFixture.h"

namespace orvo {
namespace {

/// Gives what came of the procedure as text, to be read once the platform works again.
using Outcome = std::function<std::string()>;

class VectorFaultTest : public VectorTest {
  protected:
    /// A world and a 3 × 2 grid. The tiles (3, 2) and (3, 1) are such that a point in the first is searched
    /// for.
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
        inTile = fake::MakePoint(world, {150, 30});
        searched = fake::MakePoint(world, {250, 100});
    }
    static std::string Tiles(clsTileVector* tiles) {
        if (tiles == nullptr) return "none";
        std::string text;
        for (Long y = 1; y <= tiles->TileCountY(); ++y) {
            for (Long x = 1; x <= tiles->TileCountX(); ++x) {
                text += tiles->GetTileID(x, y) + " " + Shown(tiles->GetTileExtent(x, y).get()) + "; ";
            }
        }
        return text;
    }
    Outcome Initialize() {
        grid->InitializeTiles();
        return [this] { return Tiles(grid.get()); };
    }
    Outcome Clip(const std::shared_ptr<IGeometry>& geometry) {
        const auto result = grid->Clip(2, 1, geometry);
        return [result] { return Shown(result); };
    }
    Outcome Find(const std::shared_ptr<IGeometry>& point) {
        Long x = -1;
        Long y = -1;
        const bool inside = grid->IsInside(x, y, point);
        return [=] { return inside ? std::to_string(x) + "," + std::to_string(y) : "none"; };
    }
    Outcome Clone() {
        const auto clone = grid->Clone();
        return [clone] { return Tiles(clone.get()); };
    }

    struct Operation {
        const char* label;
        std::function<Outcome()> act;
        std::string undisturbed;
        bool searches = false;  ///< tests tile after tile in a procedure of the same label
    };
    void CheckOne(const Operation& operation, long n, fake::Lasting lasting, Integer answer);

    std::shared_ptr<IGeometry> line, points, inTile, searched;
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
    const State before = GridState();
    world->FailCall(n, lasting);
    Outcome outcome;
    try {
        outcome = operation.act();
    } catch (const RuntimeError&) {
        outcome = nullptr;  // the call failed
    }
    const std::string failed = world->FailedCall();
    world->FailNothing();
    world->answer = nullptr;
    ASSERT_FALSE(failed.empty());
    const bool aboutHandler = failed.starts_with("Clock.") || failed.starts_with("Desktop.");
    // Nothing passes the procedure but a failure of its own entry or of its handler.
    EXPECT_TRUE(outcome || aboutHandler || lasting == fake::Lasting::ForGood) << failed;
    EXPECT_TRUE(aboutHandler || !world->failures.empty()) << "a failure that nobody saw: " << failed;
    EXPECT_EQ(GridState(), before);
    EXPECT_EQ(Shown(line) + Shown(points), "50,30 150,30 150,100 / 50,30 / 150,30 / ");
    const bool ownFailure = !world->failures.empty() && ShownLabel(0) == operation.label;
    if (outcome && lasting == fake::Lasting::Once && answer == kRetry && !aboutHandler) {
        EXPECT_EQ(outcome(), operation.undisturbed) << "a retry loses nothing: " << failed;
    }
    if (outcome && answer == kLeave && ownFailure && operation.label != std::string("InitializeTiles")) {
        const std::string text = outcome();
        EXPECT_TRUE(text == "none" || (operation.searches && text == operation.undisturbed)) << text;
    }
    if (answer == kLeave) {
        world->failures.clear();
        for (Long y = 1; y <= 2; ++y) {
            for (Long x = 1; x <= 3; ++x) {
                const auto tile = grid->GetTileExtent(x, y);
                EXPECT_TRUE(tile == nullptr || tile->Depth() == 50) << "no tile gets half an envelope";
            }
        }
    }
    // The grid is usable afterwards.
    grid->InitializeTiles();
    SetHeights(*grid);
    world->failures.clear();
    EXPECT_EQ(Find(inTile)(), "2,1");
    EXPECT_TRUE(world->failures.empty());
}

TEST_F(VectorFaultTest, NoFailureOfThePlatformCrashesAProcedureOrPassesUnseen) {
    const std::string tiles =
        "grp0 10 20 100 0 50; grp1 110 20 100 0 50; grp2 210 20 100 0 50; "
        "grp3 10 70 100 0 50; grp4 110 70 100 0 50; grp5 210 70 100 0 50; ";
    for (const Operation& operation :
         std::vector<Operation>{{"InitializeTiles", [&] { return Initialize(); }, tiles},
                                {"Clip", [&] { return Clip(line); }, "110,30 150,30 150,70 / "},
                                {"Clip", [&] { return Clip(points); }, "150,30 / "},
                                {"IsInside", [&] { return Find(inTile); }, "2,1"},
                                {"IsInside", [&] { return Find(searched); }, "3,1", true},
                                {"Clone", [&] { return Clone(); }, tiles}}) {
        Prepare();
        world->FailCall(0, fake::Lasting::Once);
        const Outcome outcome = operation.act();
        const long calls = world->Calls();
        ASSERT_EQ(outcome(), operation.undisturbed);
        ASSERT_TRUE(world->failures.empty());
        for (const auto lasting : {fake::Lasting::Once, fake::Lasting::ForGood}) {
            for (const Integer answer : {kRetry, kNext, kLeave}) {
                for (long n = 1; n <= calls; ++n) CheckOne(operation, n, lasting, answer);
            }
        }
        if (HasFailure()) break;
    }
    RecordProperty("cases", static_cast<int>(cases));
    std::printf("vector fault matrix: %ld cases\n", cases);
}

}  // namespace
}  // namespace orvo
