// clsTileVector: what Clip gives for each kind and place, where IsInside finds a point.
#include "tests/component/VectorFixture.h"

namespace orvo {
namespace {

using fake::MakePoint;
using Geometry = std::shared_ptr<IGeometry>;

/// Tiles of 100 × 50 from (10, 20); tile (2, 1) spans 110 to 210 and 20 to 70.
class VectorGeometryTest : public VectorTest {
  protected:
    VectorGeometryTest() { BuildGrid(); }
    Geometry Make(GeometryType type, const fake::Answer& answer) {
        return fake::MakeGeometry(world, type, "whole", {answer});
    }
    /// The answer and the numbers as they are afterwards, as "true 3,2 ", and the failures behind.
    std::string Ask(Long x, Long y, const Geometry& geometry) {
        const std::string inside = grid->IsInside(x, y, geometry) ? "true " : "false ";
        return inside + std::to_string(x) + "," + std::to_string(y) + " " + Failures();
    }
};

TEST_F(VectorGeometryTest, ClipFollowsTheRelationsOfTheKind) {
    using Rows =
        std::vector<std::array<std::string, 3>>;  // relations (within, crosses, overlaps), part, result
    // Neither crosses nor overlaps: touches the tile or covers it.
    const Rows shapes{{"wco", "part", "whole"},
                      {"c", "part", "part"},
                      {"o", "part", "part"},
                      {"co", "", "none"},
                      {"", "part", "none"}};
    const Rows points{{"w", "part", "whole"}, {"", "part", "part"}, {"co", "", "none"}},
        others{{"wco", "part", "none"}};
    using enum GeometryType;
    for (const auto& [type, rows] : {std::pair(Polyline, shapes),
                                     {Polygon, shapes},
                                     {Multipoint, points},
                                     {Point, others},
                                     {Other, others}}) {
        for (const auto& [relations, part, result] : rows) {
            const auto has = [&](char relation) { return relations.find(relation) != std::string::npos; };
            const Geometry geometry = Make(type, {{110, 20, 210, 70}, has('w'), has('c'), has('o'), part});
            const Geometry clipped = grid->Clip(2, 1, geometry);
            EXPECT_EQ(Shown(clipped), result) << relations << part;
            EXPECT_NE(clipped, geometry);
            EXPECT_EQ(Shown(geometry), "whole") << "the input stays";
        }
    }
    EXPECT_EQ(grid->Clip(2, 1, extent), nullptr) << "an envelope is none of the kinds";
    EXPECT_EQ(Failures(), "");
}

TEST_F(VectorGeometryTest, ClipFailsTowardsNothingAndGoesOnAsAsked) {
    const auto line = Make(GeometryType::Polyline, {.rectangle = {}, .within = true});
    EXPECT_EQ(grid->Clip(4, 1, line), nullptr);
    EXPECT_EQ(grid->Clip(1, 1, nullptr), nullptr);
    Do("h0 i0");
    EXPECT_EQ(grid->Clip(1, 1, line), nullptr) << "the platform refuses an empty envelope";
    EXPECT_EQ(Failures(), "9 Clip, 91 Clip, 91 Clip");
    AlwaysAnswer(kNext);
    EXPECT_EQ(Shown(grid->Clip(4, 1, line)), "whole") << "a skipped condition enters its block";
}

TEST_F(VectorGeometryTest, IsInsideWritesBackTheTileItFindsOrWhereItStopped) {
    for (const char* row :  // the point, the tile asked for, the answer and the tile afterwards; (110, 30) is
                            // on an edge
         {"250 100 -1 -1|true 3,2 ", "11 21 -1 -1|true 1,1 ", "5000 30 -1 -1|false 4,3 ",
          "30 1e15 -1 -1|false 4,3 ", "-50 30 -1 -1|false 4,3 ", "-150 30 -1 -1|false 0,1 9 IsInside",
          "30 -500 -1 -1|false 1,-9 9 IsInside", "-1e15 30 -1 -1|false -1,-1 6 IsInside",
          "110 30 -1 -1|false 4,3 ", "10 20 -1 -1|false 4,3 ", "150 100 2 2|true 2,2 ",
          "150 100 2 1|false 2,1 ", "150 100 -1 2|false -1,2 9 IsInside",
          "150 100 2 3|false 2,3 9 IsInside"}) {
        std::istringstream asked(row);
        Point point;
        Long x = 0, y = 0;
        asked >> point.X >> point.Y >> x >> y;
        EXPECT_EQ(Ask(x, y, MakePoint(world, point)), Cells(row)[1]) << row;
    }
    const fake::Answer within{.rectangle = {110, 20, 210, 70}, .within = true};
    EXPECT_EQ(Ask(-1, -1, Make(GeometryType::Polyline, within)), "false -1,-1 ");
    EXPECT_EQ(Ask(2, 1, Make(GeometryType::Multipoint, within)), "false 2,1 ");
}

TEST_F(VectorGeometryTest, IsInsideTestsTheProbableTileFirstAndSearchesOnlyWhereThatFails) {
    const auto point = MakePoint(world, {250, 100});
    EXPECT_EQ(Ask(-1, -1, point), "true 3,2 ");
    EXPECT_THAT(Trace().At(4) + Trace().At(1), testing::MatchesRegex(".*clsTileVector.*GUIApi.*"))
        << "no search";
    // The probable tile no longer holds the point, two others do: the search takes the one further south.
    grid->GetTileExtent(3, 2)->Height(10);
    grid->GetTileExtent(3, 1)->Height(100);
    grid->GetTileExtent(1, 2)->Width(290);
    EXPECT_EQ(Ask(-1, -1, point), "true 3,1 ");
}

TEST_F(VectorGeometryTest, IsInsideFailsWhereTheSouthWestTileHasNoSize) {
    const auto point = MakePoint(world, {250, 60});
    grid->GetTileExtent(1, 1)->Height(0);
    EXPECT_EQ(Ask(-1, -1, point), "false 3,-1 11 IsInside") << "the column is written, the row failed";
    AlwaysAnswer(kNext);
    EXPECT_EQ(Ask(-1, -1, point), "true 3,1 11 IsInside, 9 IsInside") << "skipped as far as the search";
    AlwaysAnswer(kLeave);
    Do("h0 i0");
    EXPECT_EQ(Ask(-1, -1, point), "false -1,-1 91 IsInside");
}

}  // namespace
}  // namespace orvo
