// clsTileVector: sizes and counts, tile records and names, clones, and what failures leave behind.
#include <limits>

#include "platform/memory/Envelope.h"
#include "tests/component/VectorFixture.h"

namespace orvo {
namespace {

using Set = void (*)(clsTileVector&);

class VectorGridTest : public VectorTest {};

TEST_F(VectorGridTest, SizesAndCountsFollowEachOtherOnlyAsFarAsTheSettersSay) {
    struct Case {
        const char* name;
        double width, height;
        Set set;
        State state;
    };
    for (const Case& c : std::vector<Case>{
             {"defaults", 1000, 600, [](clsTileVector&) {}, {0, 0, 1, 1}},
             {"no extent",
              1000,
              600,
              [](clsTileVector& g) {
                  g.LayerExtent(nullptr);
                  g.TileWidth(250);
                  g.TileHeight(-1);
                  g.TileCountX(7);
              },
              {0, 0, 7, 1}},
             {"no layer",
              1000,
              600,
              [](clsTileVector& g) { g.VectorLayer(nullptr), g.TileWidth(250); },
              {250, 0, 4, 1}},
             {"even quotient", 1000, 600, [](clsTileVector& g) { g.TileCountX(4); }, {250, 0, 4, 1}},
             {"odd quotient", 1000, 600, [](clsTileVector& g) { g.TileCountX(8); }, {126, 0, 8, 1}},
             {"fraction", 1000, 600, [](clsTileVector& g) { g.TileCountX(3); }, {334, 0, 3, 1}},
             {"negative", 1000, 600, [](clsTileVector& g) { g.TileCountX(-4); }, {-250, 0, -4, 1}},
             {"rows",
              1000,
              600,
              [](clsTileVector& g) { g.TileHeight(77), g.TileCountY(3); },
              {200, 77, 1, 3}},
             {"count wins",
              1000,
              600,
              [](clsTileVector& g) { g.TileCountX(5), g.TileWidth(100); },
              {100, 0, 5, 1}},
             {"both axes",
              1000,
              600,
              [](clsTileVector& g) { g.TileWidth(300), g.TileHeight(250); },
              {300, 250, 4, 3}},
         }) {
        Renew(c.width, c.height);
        c.set(*grid);
        EXPECT_EQ(GridState(), c.state) << c.name;
        EXPECT_EQ(grid->TileCountX(), c.state[2]);
        EXPECT_EQ(grid->TileCountY(), c.state[3]);
    }
}

TEST_F(VectorGridTest, SizeGivesTheCountOnBothAxesAlike) {
    struct Case {
        double span;
        std::vector<Long> sizes;
        Long size, count;
    };
    for (const Case& c : std::vector<Case>{{1000, {250}, 250, 4},
                                           {1000, {400}, 400, 3},
                                           {1000, {300}, 300, 4},
                                           {1000, {1000}, 1000, 1},
                                           {1000, {2000, 250, 100}, 100, 4},
                                           {1000.5, {-1}, 1000, 1},
                                           {1001.5, {-1}, 1002, 1},
                                           {1000.4, {250}, 250, 4},
                                           {999.6, {250}, 250, 4},
                                           {0.4, {-1, 7}, 7, 0},
                                           {1000, {0}, 0, 1},
                                           {1000, {0, 100, -1}, 1000, 10},
                                           {1000, {-10}, -10, -100},
                                           {1000, {-3}, -3, -333},
                                           {1000, {-10, 500}, 500, 2}}) {
        Renew(c.span, c.span);
        for (const Long size : c.sizes) grid->TileWidth(size);
        EXPECT_EQ(GridState(), (State{c.size, 0, c.count, 1})) << c.span << ", " << c.sizes.back();
        for (const Long size : c.sizes) grid->TileHeight(size);
        EXPECT_EQ(GridState(), (State{c.size, c.size, c.count, c.count})) << c.span;
    }
}

TEST_F(VectorGridTest, FailuresLeaveWhatWasWrittenBefore) {
    const auto initialized = [](clsTileVector& g) { g.TileWidth(4), g.TileHeight(5), g.InitializeTiles(); };
    struct Case {
        const char* label;
        double size;
        Set prepare, fail;
        const char* error;
        State left, skipped;
    };
    for (const Case& c : std::vector<Case>{
             {"TileCountX [LET]",
              8,
              initialized,
              [](clsTileVector& g) { g.TileCountX(0); },
              "11 (Division by zero)",
              {4, 5, 0, 2},
              {4, 5, 0, 2}},
             {"TileCountY [LET]",
              8,
              initialized,
              [](clsTileVector& g) { g.TileCountY(0); },
              "11 (Division by zero)",
              {4, 5, 2, 0},
              {4, 5, 2, 0}},
             {"TileCountX [LET]",
              0,
              initialized,
              [](clsTileVector& g) { g.TileCountX(0); },
              "6 (Overflow)",
              {4, 5, 0, 0},
              {4, 5, 0, 0}},
             {"TileWidth [LET]",
              3e9,
              [](clsTileVector&) {},
              [](clsTileVector& g) { g.TileWidth(7); },
              "6 (Overflow)",
              {0, 0, 1, 1},
              {7, 0, 0, 1}},
             {"TileHeight [LET]",
              3e9,
              [](clsTileVector&) {},
              [](clsTileVector& g) { g.TileHeight(-1); },
              "6 (Overflow)",
              {0, 0, 1, 1},
              {0, 0, 1, 1}},
             {"TileCountX [LET]",
              3e9,
              [](clsTileVector&) {},
              [](clsTileVector& g) { g.TileCountX(1); },
              "6 (Overflow)",
              {0, 0, 1, 1},
              {0, 0, 1, 1}},
         }) {
        for (const Integer answer : {kRetry, kNext, kLeave}) {
            SCOPED_TRACE(testing::Message() << c.label << ", answer " << answer);
            world->answer = nullptr;
            Renew(c.size, c.size);
            c.prepare(*grid);
            world->failures.clear();
            Answer({answer});
            c.fail(*grid);
            ASSERT_EQ(world->failures.size(), answer == kRetry ? 2U : 1U);
            EXPECT_EQ(ShownError(0), c.error);
            EXPECT_EQ(ShownLabel(0), c.label);
            EXPECT_EQ(GridState(), answer == kNext ? c.skipped : c.left);
        }
    }
}

TEST_F(VectorGridTest, RecordsAreNumberedFromTheSouthWestAndKeepTheirEnvelopes) {
    Renew(250, 100);
    grid->TileWidth(100);
    grid->TileHeight(50);
    grid->InitializeTiles();
    EXPECT_EQ(grid->GetTileID(1, 1) + grid->GetTileID(3, 1) + grid->GetTileID(1, 2), "grp0grp2grp3");
    EXPECT_EQ(Shown(grid->GetTileExtent(3, 2).get()), "210 70 100 0 50") << "not cut back, without height";
    EXPECT_EQ(grid->GetTileExtent(3, 2), grid->GetTileExtent(3, 2));
    const auto whole = grid->GetTileExtent(0, 0);
    EXPECT_EQ(Shown(whole.get()), "10 20 250 0 100");
    EXPECT_NE(whole, grid->GetTileExtent(0, 0));
    grid->GetTileExtent(3, 2)->Height(50);
    EXPECT_EQ(Shown(grid->GetTileExtent(3, 2).get()), "210 70 100 50 50");

    grid->Id("layer7");
    EXPECT_EQ(grid->GetTileTStream(2, 1), "layer7grp1");
    EXPECT_EQ(grid->GetTileTStream(2, 1, "a"), "agrp1");
    EXPECT_EQ(grid->GetTileTStream(0, 0, "a"), "agrp-1");
    EXPECT_EQ(Trace().At(0),
              "14:25:07 [clsTileVector] Public Function GetTileTStream(ByVal strVersion As String, ByVal "
              "lngNrX As Long, ByVal lngNrY As Long, Optional ByVal strID As String = \"\") As String");
    grid->Id("");
    EXPECT_EQ(grid->GetTileTStream(0, 0), "grp-1");

    grid->TileHeight(0);
    EXPECT_EQ(grid->GetTileID(3, 2), "grp5") << "settings never touch the records";
    grid->InitializeTiles();
    EXPECT_EQ(grid->GetTileExtent(1, 1), nullptr);
    EXPECT_EQ(grid->GetTileExtent(0, 0), nullptr);
    EXPECT_TRUE(world->failures.empty());
}

TEST_F(VectorGridTest, TilesThatAreNotThereAreSubscriptsOutOfRange) {
    constexpr Long kLeast = std::numeric_limits<Long>::min();
    BuildGrid();
    const auto ask = [&](Long x, Long y) {
        EXPECT_EQ(grid->GetTileID(x, y), "");
        EXPECT_EQ(x == 0 && y == 0 ? nullptr : grid->GetTileExtent(x, y), nullptr);
        EXPECT_EQ(x == 0 && y == 0 ? "" : grid->GetTileTStream(x, y), "");
    };
    for (const auto& [x, y] : std::vector<std::pair<Long, Long>>{{0, 0}, {0, 1}, {4, 1}, {1, 3}, {-1, -1}}) {
        ask(x, y);
        EXPECT_EQ(ShownError(0), "9 (Subscript out of range)") << x << ", " << y;
        world->failures.clear();
    }
    ask(kLeast, 1);
    EXPECT_EQ(ShownError(0), "6 (Overflow)");
    Renew(300, 100);
    world->failures.clear();
    ask(1, 1);
    ASSERT_EQ(world->failures.size(), 3U);
    EXPECT_EQ(ShownError(0) + ShownLabel(1), "9 (Subscript out of range)GetTileExtent");
}

TEST_F(VectorGridTest, BuildingFailsWithoutLosingTheRecordsItCannotReplace) {
    for (const Integer answer : {kNext, kLeave}) {
        BuildGrid();
        AlwaysAnswer(answer);
        world->failures.clear();
        grid->TileCountX(-2);
        grid->InitializeTiles();
        EXPECT_EQ(world->failures.size(), 1U);
        EXPECT_EQ(ShownError(0) + ShownLabel(0), "9 (Subscript out of range)InitializeTiles");
        EXPECT_EQ(grid->GetTileID(3, 2), "grp5");
        grid->TileCountX(4);
        grid->TileWidth(1 << 30);
        world->failures.clear();
        grid->InitializeTiles();
        EXPECT_EQ(ShownError(0) + ShownLabel(0), "6 (Overflow)makeTileExtent");
        EXPECT_EQ(Shown(grid->GetTileExtent(2, 1).get()), "1073741834 20 1073741824 0 50");
        EXPECT_EQ(Shown(grid->GetTileExtent(4, 2).get()), answer == kNext ? "0 70 1073741824 0 50" : "none");
        world->answer = nullptr;
    }
    grid->LayerExtent(nullptr);
    grid->TileCountX(std::numeric_limits<Long>::max());
    grid->TileCountY(std::numeric_limits<Long>::max());
    world->failures.clear();
    grid->InitializeTiles();
    EXPECT_EQ(ShownError(0), "7 (Out of memory)");
}

TEST_F(VectorGridTest, TileCountWalksTheExtentAndReadsItOnEveryTest) {
    struct Case {
        double width, height;
        Long count;
    };
    for (const Case& c :
         std::vector<Case>{{1000.4, 600, 15}, {1000, 600, 12}, {999.6, 0.1, 4}, {0, 600, 0}}) {
        Renew(1000, 600);
        grid->TileWidth(250);
        grid->TileHeight(200);
        grid->LayerExtent(fake::MakeEnvelope(world, {0, 0, c.width, c.height}));
        world->FailCall(0, fake::Lasting::Once);
        EXPECT_EQ(grid->TileCount(), c.count);
        const Long rows = c.height > 1 ? 3 : 1;
        const Long columns = c.count / rows;
        EXPECT_EQ(world->Calls(), 1 + (rows + 1) + rows * (columns + 1))
            << "the entry's clock, heights, widths";
    }
    grid->TileWidth(1 << 30);
    grid->LayerExtent(fake::MakeEnvelope(world, {0, 0, 1e10, 600}));
    world->failures.clear();
    EXPECT_EQ(grid->TileCount(), 0);
    EXPECT_EQ(ShownError(0), "6 (Overflow)");
    grid->LayerExtent(nullptr);
    EXPECT_EQ(grid->TileCount(), 0);
    EXPECT_EQ(ShownError(1) + ShownLabel(1),
              "91 (Object variable or With block variable not set)TileCount [GET]");
}

TEST_F(VectorGridTest, CloneKeepsTheSizesAndDerivesTheRest) {
    const auto status = std::make_shared<fake::StatusDisplay>(world);
    Renew(1000, 600);
    grid->StatusObject(status);
    grid->Id("source");
    grid->TileCountX(5);
    grid->TileWidth(100);
    grid->TileHeight(-1);
    const auto same = grid->Clone();
    EXPECT_EQ(TileVectorProbe::State(*same), (State{100, 600, 10, 1}));
    EXPECT_EQ(TileVectorProbe::Extent(*same), extent.get());
    EXPECT_EQ(TileVectorProbe::Status(*same), status.get());
    EXPECT_EQ(same->GetTileTStream(10, 1), "grp9");
    const auto smaller = grid->Clone(fake::MakeEnvelope(world, {1, 2, 251, 1202}));
    EXPECT_EQ(TileVectorProbe::State(*smaller), (State{100, 600, 3, 2}));
    EXPECT_EQ(Shown(smaller->GetTileExtent(3, 2).get()), "201 602 100 0 600");
    grid->LayerExtent(nullptr);
    const auto bare = grid->Clone();
    EXPECT_EQ(TileVectorProbe::State(*bare), (State{0, 0, 1, 1}));
    EXPECT_EQ(bare->GetTileID(1, 1), "grp0");
    EXPECT_EQ(bare->GetTileExtent(1, 1), nullptr);
    EXPECT_TRUE(world->failures.empty());
}

TEST_F(VectorGridTest, CreationSetsTheLanguageAndReleaseEmptiesTheRecordsOneByOne) {
    world->languageOffset = 20000;
    BuildGrid();
    EXPECT_EQ(LangOffset(), 20000);
    const std::weak_ptr<IEnvelope> tile = grid->GetTileExtent(3, 2);
    extent.reset();
    grid.reset();
    EXPECT_TRUE(tile.expired());
    EXPECT_TRUE(world->failures.empty());
    EXPECT_EQ(Trace().At(5), "14:25:07 [clsVectorTile] Private Sub Class_Terminate()");
    EXPECT_EQ(Trace().At(6), "14:25:07 [clsTileVector] Private Sub Class_Terminate()");

    grid = std::make_shared<clsTileVector>();
    grid->LayerExtent(nullptr);
    EXPECT_EQ(Trace().At(0),
              "14:25:07 [clsTileVector] Public Property Set VectorLayer(NewValue As esriCarto.ILayer)");
    AlwaysAnswer(kNext);
    grid.reset();
    // Both bounds, the element, and the ends of both loops that were never set up.
    std::string errors;
    for (const auto& failure : world->failures)
        errors += failure.rows[0].text.substr(0, 2) + failure.rows[2].text;
    EXPECT_EQ(errors,
              "9 Class_Terminate9 Class_Terminate9 Class_Terminate92Class_Terminate92Class_Terminate");

    platform::Current().newUtilTools = nullptr;
    AlwaysAnswer(kLeave);
    grid = std::make_shared<clsTileVector>();
    EXPECT_EQ(GridState(), (State{0, 0, 1, 1})) << "the defaults do not wait for the language";
}

TEST_F(VectorGridTest, RecordCostsNoAllocationButItsEnvelope) {
    platform::Current().newEnvelope = [] { return std::make_shared<memory::Envelope>(); };
    Renew(100, 50);
    grid->TileWidth(1);
    grid->TileHeight(1);
    grid->InitializeTiles();
    const long before = AllocationCount();
    grid->InitializeTiles();
    EXPECT_LE(AllocationCount() - before, 100 * 50 + 2);
}

}  // namespace
}  // namespace orvo
