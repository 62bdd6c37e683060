// clsTileVector: the grid's larger procedures with every platform call failing.
#include <optional>

#include "tests/component/Faults.h"
#include "tests/component/VectorFixture.h"

namespace orvo {
namespace {

struct Operation {
    const char* label;
    std::function<void()> act;
    std::string undisturbed;
    std::string left = "none";  ///< what comes of it where the user leaves it, "" for anything
};

class VectorFaultTest : public FaultTest<VectorTest> {
  protected:
    /// A world and a 3 × 2 grid whose tile (3, 1) reaches over (3, 2), so that a point there is searched for.
    void Prepare() {
        grid.reset();
        tell = nullptr;
        NewWorld();
        BuildGrid();
        grid->GetTileExtent(3, 2)->Height(10);
        grid->GetTileExtent(3, 1)->Height(100);
        const fake::Box tile{110, 20, 210, 70};
        line = fake::MakeGeometry(world, GeometryType::Polyline, "line",
                                  {{.rectangle = tile, .crosses = true, .clipped = "part of it"}});
        points = fake::MakeGeometry(world, GeometryType::Multipoint, "points",
                                    {{.rectangle = tile, .clipped = "one of them"}});
    }
    void Find(const Point& point) {
        Long x = -1;
        Long y = -1;
        const bool inside = grid->IsInside(x, y, fake::MakePoint(world, point));
        tell = [=] { return inside ? std::to_string(x) + "," + std::to_string(y) : "none"; };
    }
    void Clip(const std::shared_ptr<IGeometry>& geometry) {
        tell = [result = grid->Clip(2, 1, geometry)] { return Shown(result); };
    }
    static std::string Tiles(const std::shared_ptr<clsTileVector>& tiles) {
        std::string text = tiles ? "" : "none";
        for (Long n = 0; tiles && n < 6; ++n) {
            const Long x = n % 3 + 1, y = n / 3 + 1;
            text += tiles->GetTileID(x, y) + " " + Shown(tiles->GetTileExtent(x, y)) + "; ";
        }
        return text;
    }
    void Check(const Operation& operation, const Disturbed& run);

    std::shared_ptr<IGeometry> line, points;
    std::function<std::string()> tell;  ///< gives what came of the operation, none where it threw
};

void VectorFaultTest::Check(const Operation& operation, const Disturbed& run) {
    EXPECT_TRUE(run.aboutHandler || !world->failures.empty()) << "a failure that nobody saw: " << run.failed;
    const bool leftItself =
        run.answer == kLeave && !world->failures.empty() && ShownLabel(0) == operation.label;
    EXPECT_EQ(TileVectorProbe::Of(*grid), "100 50 3 2");
    EXPECT_EQ(Shown(line) + Shown(points), "linepoints") << "the input stays";
    if (tell) {
        const std::string outcome = tell();
        EXPECT_TRUE(!run.IsRetried() || outcome == operation.undisturbed) << "lost by a retry: " << outcome;
        EXPECT_TRUE(!leftItself || operation.left.empty() || outcome == operation.left) << outcome;
        EXPECT_TRUE(run.answer != kLeave || outcome.find(" 0 0;") == std::string::npos)
            << "half: " << outcome;
    }
    Do("i0");
    grid->GetTileExtent(1, 1)->Height(50);
    Find({50, 30});
    EXPECT_EQ(tell(), "1,1") << "usable afterwards";
}

TEST_F(VectorFaultTest, NoFailureOfThePlatformCrashesAProcedureOrPassesUnseen) {
    const std::string tiles =
        "grp0 10 20 100 0 50; grp1 110 20 100 0 50; grp2 210 20 100 0 50; "
        "grp3 10 70 100 0 50; grp4 110 70 100 0 50; grp5 210 70 100 0 50; ";
    const auto build = [&] {
        Do("i0");
        tell = [&] { return Tiles(grid); };
    };
    const auto clone = [&] { tell = [copy = grid->Clone()] { return Tiles(copy); }; };
    const auto find = [&](const Point& point) { return [this, point] { Find(point); }; };
    const std::vector<Operation> operations{
        {"InitializeTiles", build, tiles, ""},          {"Clip", [&] { Clip(line); }, "part of it"},
        {"Clip", [&] { Clip(points); }, "one of them"}, {"IsInside", find({150, 30}), "2,1"},
        {"IsInside", find({250, 100}), "3,1", ""},      {"Clone", clone, tiles}};
    for (const Operation& operation : operations) {
        Prepare();
        operation.act();
        ASSERT_EQ(tell(), operation.undisturbed);
        FailEveryCall(
            operation.label, [&] { Prepare(); }, operation.act,
            [&](const Disturbed& run) { Check(operation, run); });
    }
}

}  // namespace
}  // namespace orvo
