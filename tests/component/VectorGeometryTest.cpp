// clsTileVector: what Clip gives for each kind and place, where IsInside finds a point.
#include "tests/component/VectorFixture.h"

namespace orvo {
namespace {

using fake::MakeMultipoint;
using fake::MakePoint;
using fake::MakePolygon;
using fake::MakePolyline;
using Geometry = std::shared_ptr<IGeometry>;

/// Tiles of 100 × 50 from (10, 20); tile (2, 1) spans 110 to 210 and 20 to 70.
class VectorGeometryTest : public VectorTest {
  protected:
    VectorGeometryTest() { BuildGrid(); }
    std::string Clipped(const Geometry& geometry) {
        const std::string input = Shown(geometry);
        const Geometry result = grid->Clip(2, 1, geometry);
        EXPECT_NE(result, geometry);
        EXPECT_EQ(Shown(geometry), input) << "the input stays";
        return Shown(result);
    }
};

TEST_F(VectorGeometryTest, ClipGivesTheShareOfATile) {
    const auto line = [&](std::vector<Point> path) { return MakePolyline(world, {std::move(path)}); };
    const auto area = [&](std::vector<fake::Box> boxes) { return MakePolygon(world, boxes); };
    const std::string tile = "110,20 210,20 210,70 110,70 110,20 / ";
    struct Case {
        const char* name;
        Geometry geometry;
        std::string result;
    };
    for (const Case& c : std::vector<Case>{
             {"line inside", line({{120, 30}, {130, 30}}), "120,30 130,30 / "},
             {"line through", line({{0, 30}, {120, 30}, {120, 90}}), "110,30 120,30 120,70 / "},
             {"line in and out", line({{150, 60}, {150, 90}, {160, 90}, {160, 60}}),
              "150,60 150,70 / 160,70 160,60 / "},
             {"line ending on the edge", line({{120, 30}, {120, 70}}), "120,30 120,70 / "},
             {"line along the edge", line({{120, 70}, {130, 70}}), "none"},
             {"line that touches", line({{120, 70}, {120, 90}}), "none"},
             {"line elsewhere", line({{20, 30}, {30, 30}}), "none"},
             {"area inside", area({{120, 30, 130, 40}}), "120,30 130,30 130,40 120,40 120,30 / "},
             {"area across the corner", area({{0, 0, 120, 30}}), "110,20 120,20 120,30 110,30 110,20 / "},
             {"area equal to the tile", area({{110, 20, 210, 70}}), tile},
             {"area that covers the tile", area({{0, 0, 300, 300}}), "none"},
             {"area whose hole reaches in", area({{0, 0, 300, 300}, {150, 10, 220, 80}}),
              tile + "150,20 210,20 210,70 150,70 150,20 / "},
             {"area whose hole holds the tile", area({{0, 0, 300, 300}, {100, 10, 220, 80}}), "none"},
             {"area that touches", area({{0, 20, 110, 70}}), "none"},
             {"points inside", MakeMultipoint(world, {{120, 30}, {130, 30}}), "120,30 / 130,30 / "},
             {"points in and out", MakeMultipoint(world, {{20, 30}, {130, 30}, {150, 40}}),
              "130,30 / 150,40 / "},
             {"points elsewhere", MakeMultipoint(world, {{20, 30}}), "none"},
             {"no points", MakeMultipoint(world, {}), "none"},
             {"single point", MakePoint(world, {120, 30}), "none"},
             {"envelope", fake::MakeEnvelope(world, {120, 30, 130, 40}), "none"},
         }) {
        SCOPED_TRACE(c.name);
        if (c.geometry->GeometryType() == GeometryType::Envelope) {
            EXPECT_EQ(grid->Clip(2, 1, c.geometry), nullptr);
        } else {
            EXPECT_EQ(Clipped(c.geometry), c.result);
        }
    }
    EXPECT_TRUE(world->failures.empty());
}

TEST_F(VectorGeometryTest, ClipFailsTowardsNothingAndGoesOnAsAsked) {
    const auto line = MakePolyline(world, {{{120, 30}, {130, 30}}});
    EXPECT_EQ(grid->Clip(4, 1, line), nullptr);
    EXPECT_EQ(ShownError(0) + ShownLabel(0), "9 (Subscript out of range)Clip");
    EXPECT_EQ(grid->Clip(1, 1, nullptr), nullptr);
    EXPECT_EQ(ShownError(1).substr(0, 2), "91");
    grid->TileHeight(0);
    grid->InitializeTiles();
    EXPECT_EQ(grid->Clip(1, 1, line), nullptr);
    EXPECT_EQ(ShownError(2).substr(0, 2), "91") << "the platform's answer to an empty envelope";
    ASSERT_EQ(world->failures.size(), 3U);
    AlwaysAnswer(kNext);
    EXPECT_EQ(Shown(grid->Clip(4, 1, line)), Shown(line)) << "a skipped condition enters its block";
    EXPECT_EQ(grid->Clip(1, 1, nullptr), nullptr);
}

TEST_F(VectorGeometryTest, IsInsideWritesBackTheTileItFindsOrWhereItStopped) {
    struct Case {
        const char* name;
        Point point;
        Long x, y;
        bool inside;
        Long foundX, foundY;
        std::size_t failures = 0;
    };
    for (const Case& c : std::vector<Case>{{"found", {250, 100}, -1, -1, true, 3, 2},
                                           {"origin's tile", {11, 21}, -1, -1, true, 1, 1},
                                           {"east", {5000, 30}, -1, -1, false, 4, 3},
                                           {"north", {30, 5000}, -1, -1, false, 4, 3},
                                           {"just west", {-50, 30}, -1, -1, false, 4, 3},
                                           {"farther west", {-150, 30}, -1, -1, false, 0, 1, 1},
                                           {"far south", {30, -500}, -1, -1, false, 1, -9, 1},
                                           {"beyond all numbers", {1e15, 30}, -1, -1, false, 4, 3},
                                           // The column overflows, so neither number is written.
                                           {"beyond all to the west", {-1e15, 30}, -1, -1, false, -1, -1, 1},
                                           {"on an edge", {110, 30}, -1, -1, false, 4, 3},
                                           {"on a corner", {10, 20}, -1, -1, false, 4, 3},
                                           {"named", {150, 100}, 2, 2, true, 2, 2},
                                           {"another named", {150, 100}, 2, 1, false, 2, 1},
                                           {"half named", {150, 100}, -1, 2, false, -1, 2, 1},
                                           {"named outside", {150, 100}, 2, 3, false, 2, 3, 1}}) {
        SCOPED_TRACE(c.name);
        world->failures.clear();
        Long x = c.x;
        Long y = c.y;
        EXPECT_EQ(grid->IsInside(x, y, MakePoint(world, c.point)), c.inside);
        EXPECT_EQ(x, c.foundX);
        EXPECT_EQ(y, c.foundY);
        EXPECT_EQ(world->failures.size(), c.failures);
    }
    for (const auto& shape :
         {MakePolyline(world, {{{120, 30}, {130, 30}}}), MakeMultipoint(world, {{120, 30}})}) {
        Long x = -1;
        Long y = -1;
        EXPECT_FALSE(grid->IsInside(x, y, shape));
        EXPECT_EQ(x, -1);
        EXPECT_EQ(y, -1);
    }
}

TEST_F(VectorGeometryTest, IsInsideTestsTheProbableTileFirstAndSearchesOnlyWhereThatFails) {
    Long x = -1;
    Long y = -1;
    const auto point = MakePoint(world, {250, 100});
    EXPECT_TRUE(grid->IsInside(x, y, point));
    std::vector<std::string> names;
    for (std::size_t n = 5; n-- > 0;) names.push_back(Trace().At(n).substr(9, 27));
    EXPECT_THAT(names, testing::ElementsAre("[clsTileVector] Public Func", "[clsVectorTile] Public Prop",
                                            "[GUIApi] Function Min(Param", "[GUIApi] Function Min(Param",
                                            "[clsVectorTile] Public Prop"));
    // The probable tile no longer holds the point, two others do: the search takes the one further south.
    grid->GetTileExtent(3, 2)->Height(10);
    grid->GetTileExtent(3, 1)->Height(100);
    grid->GetTileExtent(1, 2)->Width(290);
    x = y = -1;
    EXPECT_TRUE(grid->IsInside(x, y, point));
    EXPECT_EQ(x, 3);
    EXPECT_EQ(y, 1);
}

TEST_F(VectorGeometryTest, IsInsideFailsWhereTheSouthWestTileHasNoSize) {
    const auto point = MakePoint(world, {250, 60});
    grid->GetTileExtent(1, 1)->Height(0);
    Long x = -1;
    Long y = -1;
    EXPECT_FALSE(grid->IsInside(x, y, point));
    EXPECT_EQ(ShownError(0) + ShownLabel(0), "11 (Division by zero)IsInside");
    EXPECT_EQ(x, 3) << "written before the row failed";
    EXPECT_EQ(y, -1);

    AlwaysAnswer(kNext);
    world->failures.clear();
    x = y = -1;
    EXPECT_TRUE(grid->IsInside(x, y, point)) << "skipped as far as the search";
    EXPECT_EQ(x, 3);
    EXPECT_EQ(y, 1);
    ASSERT_EQ(world->failures.size(), 2U);
    EXPECT_EQ(ShownError(1), "9 (Subscript out of range)") << "of column 3, row -1";

    world->answer = nullptr;
    grid->TileHeight(0);
    grid->InitializeTiles();
    x = y = -1;
    EXPECT_FALSE(grid->IsInside(x, y, point));
    EXPECT_EQ(ShownError(2), "91 (Object variable or With block variable not set)");
    EXPECT_EQ(x, -1);
}

}  // namespace
}  // namespace orvo
