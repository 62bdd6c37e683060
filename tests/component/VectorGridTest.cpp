// clsTileVector: sizes and counts, tile records and names, clones, and what failures leave behind.
#include <limits>

#include "platform/memory/Envelope.h"
#include "tests/component/VectorFixture.h"

namespace orvo {
namespace {

class VectorGridTest : public VectorTest {};

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

}  // namespace
}  // namespace orvo
