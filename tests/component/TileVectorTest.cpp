// clsTileVector: sizes and counts, tile records and names, clones, what Clip gives and where IsInside finds a
// point.
#include <limits>

#include "platform/memory/Envelope.h"
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

using VectorGridTest = VectorTest;

TEST_F(VectorGridTest, SizesAndCountsFollowEachOtherOnlyAsFarAsTheSettersSay) {
    for (const char* row :  // extent, steps, and the state that they lead to
         {"1000|600|n0 w250 h-1 x7|0 0 7 1", "1000|600|x3|334 0 3 1", "1000|600|x-4|-250 0 -4 1",
          "1000|600|h77 y3|200 77 1 3", "1000|600|x5 w100|100 0 5 1",
          "1000|1000|w2000 w250 w100 h2000 h250 h100|100 100 4 4", "1000.5|1001.5|w-1 h-1|1000 1002 1 1",
          "1000.4|999.6|w250 h250|250 250 4 4", "0.4|0.4|w-1 h-1 w7 h7|7 7 0 0",
          "1000|1000|w0 w100 w-1 h0 h100 h-1|1000 1000 10 10", "1000|1000|w-10 h-3|-10 -3 -100 -333",
          "1000|1000|w-10 w500 h-3 h500|500 500 2 2"}) {
        const auto cells = Cells(row);
        Renew(std::stod(cells[0]), std::stod(cells[1]), cells[2]);
        EXPECT_EQ(TileVectorProbe::Of(*grid), cells[3]) << row;
        const std::string counts =
            std::to_string(grid->TileCountX()) + " " + std::to_string(grid->TileCountY());
        EXPECT_TRUE(cells[3].ends_with(" " + counts)) << row;
    }
}

TEST_F(VectorGridTest, FailuresLeaveWhatWasWrittenBefore) {
    for (const char*
             row :  // extent, steps, the one that fails, its failure, and the state left or gone on with
         {"8|w4 h5|x0|11 TileCountX [LET]|4 5 0 2|4 5 0 2", "8|w4 h5|y0|11 TileCountY [LET]|4 5 2 0|4 5 2 0",
          "0|w4 h5|x0|6 TileCountX [LET]|4 5 0 0|4 5 0 0", "3e9||w7|6 TileWidth [LET]|0 0 1 1|7 0 0 1",
          "3e9||h-1|6 TileHeight [LET]|0 0 1 1|0 0 1 1", "3e9||x1|6 TileCountX [LET]|0 0 1 1|0 0 1 1"}) {
        for (const Integer answer : {kRetry, kNext, kLeave}) {
            const auto cells = Cells(row);
            Renew(std::stod(cells[0]), std::stod(cells[0]), cells[1] + " i0");
            Failures();
            Answer({answer});
            Do(cells[2]);
            EXPECT_EQ(Failures(), answer == kRetry ? cells[3] + ", " + cells[3] : cells[3]) << answer;
            EXPECT_EQ(TileVectorProbe::Of(*grid), cells[answer == kNext ? 5 : 4]) << row << answer;
        }
    }
}

TEST_F(VectorGridTest, RecordsAreNumberedFromTheSouthWestAndKeepTheirEnvelopes) {
    Renew(250, 100, "w100 h50 i0");
    EXPECT_EQ(grid->GetTileID(1, 1) + grid->GetTileID(3, 1) + grid->GetTileID(1, 2), "grp0grp2grp3");
    EXPECT_EQ(Extent(3, 2), "210 70 100 0 50") << "not cut back, without height";
    EXPECT_EQ(Extent(0, 0), "10 20 250 0 100");
    EXPECT_NE(grid->GetTileExtent(0, 0), grid->GetTileExtent(0, 0));
    grid->GetTileExtent(3, 2)->Height(50);
    EXPECT_EQ(Extent(3, 2), "210 70 100 50 50") << "the tile's own";
    grid->Id("layer7");
    EXPECT_EQ(grid->GetTileTStream(2, 1) + grid->GetTileTStream(0, 0, "a"), "layer7grp1agrp-1");
    Do("h0");
    EXPECT_EQ(grid->GetTileID(3, 2), "grp5") << "settings never touch the records";
    Do("i0");
    EXPECT_EQ(Extent(1, 1) + Extent(0, 0), "nonenone");
    EXPECT_EQ(Failures(), "");
}

TEST_F(VectorGridTest, TilesThatAreNotThereAreSubscriptsOutOfRange) {
    const auto ask = [&](Long x, Long y) {
        std::string told = grid->GetTileID(x, y);
        told += grid->GetTileTStream(x, y);
        EXPECT_EQ(told + Extent(x, y), "none");
        return Failures();
    };
    const char* const outOfRange = "9 GetTileID, 9 GetTileTStream, 9 GetTileExtent";
    BuildGrid();
    for (const auto& [x, y] : std::vector<std::pair<Long, Long>>{{0, 1}, {4, 1}, {1, 3}, {-1, -1}})
        EXPECT_EQ(ask(x, y), outOfRange) << x << ", " << y;
    EXPECT_EQ(ask(std::numeric_limits<Long>::min(), 1), "6 GetTileID, 6 GetTileTStream, 6 GetTileExtent");
    EXPECT_EQ(grid->GetTileID(0, 0), "") << "no whole layer here";
    EXPECT_EQ(Failures(), "9 GetTileID");
    Renew(300, 100, "");
    EXPECT_EQ(ask(1, 1), outOfRange);
}

TEST_F(VectorGridTest, BuildingFailsWithoutLosingTheRecordsItCannotReplace) {
    using testing::EndsWith;
    for (const Integer answer : {kNext, kLeave}) {
        BuildGrid();
        AlwaysAnswer(answer);
        Do("x-2 i0");
        EXPECT_THAT(Failures(), EndsWith("9 InitializeTiles"));
        EXPECT_EQ(grid->GetTileID(3, 2), "grp5");
        Do("x4 w1073741824 i0");
        EXPECT_THAT(Failures(), EndsWith("6 makeTileExtent")) << "3 * 2^30";
        EXPECT_EQ(Extent(2, 1), "1073741834 20 1073741824 0 50");
        EXPECT_EQ(Extent(4, 2), answer == kNext ? "0 70 1073741824 0 50" : "none");
    }
    Do("n0 x2147483647 y2147483647 i0");
    EXPECT_EQ(Failures(), "7 InitializeTiles");
    EXPECT_EQ(grid->GetTileID(4, 2), "grp7");
}

TEST_F(VectorGridTest, TileCountWalksTheExtentAndReadsItOnEveryTest) {
    Renew(1000.4, 600, "w250 h200");
    world->FailCall(0, fake::Lasting::Once);
    EXPECT_EQ(grid->TileCount(), 5 * 3);
    EXPECT_EQ(world->Calls(), 1 + (3 + 1) + 3 * (5 + 1)) << "the entry's clock, heights, widths";
    extent->XMax(1010);
    EXPECT_EQ(grid->TileCount(), 4 * 3);
    extent->XMax(10 + 1e10);
    Do("w1073741824");
    EXPECT_EQ(grid->TileCount(), 0);
    Do("n0");
    EXPECT_EQ(grid->TileCount(), 0);
    EXPECT_EQ(Failures(), "6 TileWidth [LET], 6 TileCount [GET], 91 TileCount [GET]");
}

TEST_F(VectorGridTest, CloneKeepsTheSizesAndDerivesTheRest) {
    Renew(1000, 600, "x5 w100 h-1");
    grid->StatusObject(std::make_shared<fake::StatusDisplay>(world));
    grid->Id("source");
    const auto same = grid->Clone();
    EXPECT_EQ(TileVectorProbe::Of(*same), "100 600 10 1");
    EXPECT_TRUE(TileVectorProbe::SharesObjects(*grid, *same));
    EXPECT_EQ(same->GetTileTStream(10, 1), "grp9");
    const auto smaller = grid->Clone(fake::MakeEnvelope(world, {1, 2, 251, 1202}));
    EXPECT_EQ(TileVectorProbe::Of(*smaller), "100 600 3 2");
    EXPECT_EQ(Shown(smaller->GetTileExtent(3, 2)), "201 602 100 0 600");
    Do("n0");
    const auto bare = grid->Clone();
    EXPECT_EQ(TileVectorProbe::Of(*bare), "0 0 1 1");
    EXPECT_EQ(bare->GetTileID(1, 1) + Shown(bare->GetTileExtent(1, 1)), "grp0none");
    EXPECT_EQ(Failures(), "");
}

TEST_F(VectorGridTest, ReleaseEmptiesTheRecordsAndFailsWhereThereAreNone) {
    world->languageOffset = 20000;
    BuildGrid();
    EXPECT_EQ(LangOffset(), 20000);
    const std::weak_ptr<IEnvelope> tile = grid->GetTileExtent(3, 2);
    grid.reset();
    EXPECT_TRUE(tile.expired());
    EXPECT_EQ(Failures(), "");
    EXPECT_EQ(Trace().At(5), "14:25:07 [clsVectorTile] Private Sub Class_Terminate()");
    EXPECT_EQ(Trace().At(6), "14:25:07 [clsTileVector] Private Sub Class_Terminate()");
    AlwaysAnswer(kNext);
    Renew(1, 1, "");
    grid.reset();
    const std::string on = " Class_Terminate";
    EXPECT_EQ(Failures(), "9" + on + ", 9" + on + ", 9" + on + ", 92" + on + ", 92" + on)
        << "both bounds, the element, and the ends of both loops that were never set up";
    platform::Current().newUtilTools = nullptr;
    AlwaysAnswer(kLeave);
    Renew(1, 1, "");
    EXPECT_EQ(TileVectorProbe::Of(*grid), "0 0 1 1") << "the defaults do not wait for the language";
}

TEST_F(VectorGridTest, RecordCostsNoAllocationButItsEnvelopeAndEntriesCostNone) {
    platform::Current().newEnvelope = [] { return std::make_shared<memory::Envelope>(); };
    Renew(100, 50, "w1 h1 i0");
    const long before = AllocationCount();
    Do("i0");
    EXPECT_LE(AllocationCount() - before, 100 * 50 + 10) << "and the array, and this test's own";
}

using fake::MakePoint;
using Geometry = std::shared_ptr<IGeometry>;

/// Tiles of 100 × 50 from (10, 20); tile (2, 1) spans 110 to 210 and 20 to 70.
struct VectorGeometryTest : VectorTest {
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
