// The cutting of single geometries: the same pieces as tile by tile, and nothing lost.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "GeosRandom.h"
#include "platform/linux/Platform.h"
#include "tiling/vector/GeometryCutter.h"
#include "tiling/vector/TileSpool.h"
#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::tiling {
namespace {

using namespace geos::test;
using geos::Bounds;
using geos::Geometry;

struct Layer final : ILayer {
    explicit Layer(const Bounds& b) : extent(geos::test::Rectangle(b.xMin, b.yMin, b.xMax, b.yMax)) {}
    std::shared_ptr<IEnvelope> AreaOfInterest() override { return extent; }
    std::shared_ptr<IEnvelope> extent;
};

struct VectorCutTest : testing::Test {
    VectorCutTest() { platform::Install(linux_platform::MakePlatform()); }
};

/// Cut at once and tile by tile. @return the sum of what the pieces measure
double CheckPieces(VectorGrid& grid, const std::shared_ptr<Geometry>& whole, int dimension) {
    std::map<std::pair<Long, Long>, std::vector<unsigned char>> pieces;
    double sum = 0;
    GeometryCutter cutter(grid, false, [&](Long column, Long row, const Geometry& piece) {
        EXPECT_TRUE((pieces.try_emplace({column, row}, Normal(piece)).second)) << "given twice";
        EXPECT_TRUE(grid.BoundsOf(column, row).Holds(piece.Extent()));
        sum += Measure(*Reread(piece), dimension);
    });
    cutter.Cut(whole);
    for (Long row = 1; row <= grid.Plan().rows; ++row) {
        for (Long column = 1; column <= grid.Plan().columns; ++column) {
            const auto clipped = grid.Tiles().Clip(column, row, whole);
            if (!clipped) continue;
            const auto& alone = dynamic_cast<const Geometry&>(*clipped);
            EXPECT_EQ((pieces[{column, row}]), Normal(alone)) << column << ", " << row;
        }
    }
    return sum;
}

TEST_F(VectorCutTest, PiecesAreThoseOfClipAndAddUp) {
    Random random;
    SCOPED_TRACE(random.Seed());
    for (int n = 0; n < 500 && !HasFailure(); ++n) {
        const bool onEdges = n % 2 == 0;
        const double low = onEdges ? -40 : -40.013;
        const TileSizes sizes =
            onEdges ? TileSizes{5, 5, 0, 0} : TileSizes{0, 0, random.Whole(1, 9), random.Whole(1, 9)};
        VectorGrid grid(std::make_shared<Layer>(Bounds{low, low, low + 100, low + 100}), sizes, "");
        const double step = onEdges ? (n % 4 == 0 ? 5 : 2.5) : (n % 4 == 1 ? 0 : 2.5);
        const std::string wkt = random.Geometry(step, n % 3 == 0);
        SCOPED_TRACE(wkt);
        const auto source = FromText(wkt);
        const int dimension = Dimension(*source);
        const double measure = Measure(*source, dimension), sum = CheckPieces(grid, Read(wkt), dimension);
        // What lies on an edge, or on a corner, may stand in all tiles there.
        EXPECT_GE(sum, measure - 1e-7);
        EXPECT_LE(sum, measure * (dimension < 2 && onEdges ? 4 : 1) + 1e-7);
    }
}

/// A border of so many corners anywhere on the grid, so that each edge crosses most of the others.
std::string Scribble(Random& random, int corners) {
    std::string text, first;
    for (int n = 0; n < corners; ++n) {
        std::string corner =
            std::to_string(random.Number(0, 100)) + ' ' + std::to_string(random.Number(0, 100));
        if (first.empty()) first = corner;
        text += corner + ", ";
    }
    return "POLYGON ((" + text + first + "))";
}

TEST_F(VectorCutTest, BordersThatCrossThemselvesThicklyAreMendedOrRefused) {
    Random random;
    SCOPED_TRACE(random.Seed());
    VectorGrid grid(std::make_shared<Layer>(Bounds{0, 0, 100, 100}), TileSizes{0, 0, 4, 4}, "");
    double sum = 0;
    GeometryCutter cutter(grid, false, [&](Long, Long, const Geometry& piece) {
        const geos::Handle found = Reread(piece);
        EXPECT_EQ(GEOSisValid_r(geos::GeosContext(), found.get()), 1);
        sum += Measure(*found, 2);
    });
    for (const int corners : {4, 5, 7, 12, 30, 30, 80}) {
        const std::string wkt = Scribble(random, corners);
        const geos::Handle mended(GEOSMakeValid_r(geos::GeosContext(), FromText(wkt).get()));
        sum = 0;
        cutter.Cut(Read(wkt));
        EXPECT_NEAR(sum, Measure(*mended, 2), 1e-6) << wkt;
        EXPECT_EQ(cutter.Refusal(), "");
    }
    cutter.Cut(Read(Scribble(random, 1500)));
    EXPECT_NE(cutter.Refusal().find("crosses itself more than"), std::string::npos) << cutter.Refusal();
    int asked = 0;
    const geos::WorkLimit limit([&] { return ++asked > 50; });
    EXPECT_THROW(cutter.Cut(Read(Scribble(random, 700))), RuntimeError);
    EXPECT_EQ(cutter.Placed(), 0U);
}

TEST_F(VectorCutTest, GridsByCountsAndSizesCoverTheLayerWithoutGaps) {
    Random random;
    SCOPED_TRACE(random.Seed());
    for (int n = 0; n < 180; ++n) {
        const double x = random.Number(-1e6, 1e6), y = random.Number(-1e6, 1e6);
        const Bounds area{x, y, x + random.Number(0, 1) * std::pow(10, n % 5), y + 7.3};
        const bool byCounts = n % 3 > 0;
        const TileSizes counts{0, 0, random.Whole(1, 20), 3}, sizes{random.Whole(1, 5000), -1, 0, 0};
        VectorGrid grid(std::make_shared<Layer>(area), byCounts ? counts : sizes, "x");
        const Long columns = grid.Tiles().TileCountX(), rows = grid.Tiles().TileCountY();
        EXPECT_EQ(std::pair(columns, rows),
                  std::pair(static_cast<Long>(grid.Plan().columns), byCounts ? 3 : 1));
        EXPECT_TRUE(grid.Whole().Holds(area));
        for (std::size_t i = 1; i < grid.Edges().columns.size(); ++i)
            EXPECT_EQ(grid.Edges().columns[i - 1].high, grid.Edges().columns[i].low);
        const Bounds last = Bounds::Of(*grid.TileAt(columns, rows));
        EXPECT_EQ(std::pair(last.xMax, last.yMax), std::pair(grid.Whole().xMax, grid.Whole().yMax));
    }
}

TEST_F(VectorCutTest, RoundingInTheExtentMakesNoFurtherColumnOrRow) {
    VectorGrid grid(std::make_shared<Layer>(Bounds{-180, -90, 180.00000000000006, 90.00000000000003}),
                    {30, 30, 0, 0}, "");
    EXPECT_TRUE(grid.Plan().columns == 12 && grid.Plan().rows == 6);
    const auto corner = grid.Locate(Read("POINT (180.00000000000006 90.00000000000003)"));
    EXPECT_TRUE(corner.column == 12 && corner.row == 6);
}

TEST(TileSpoolTest, KeepsTheOrderWhateverTheMemory) {
    for (const std::size_t memory : {std::size_t{0}, std::size_t{50}, std::size_t{1} << 20U}) {
        TileSpool spool(testing::TempDir(), memory);
        std::map<std::int64_t, std::string> expected;
        for (unsigned i = 0; i < 500; ++i) {
            const std::string record = std::string(i * i % 31, 'x') + std::to_string(i) + ";";
            const std::int64_t tile = std::int64_t{i * 7 % 9} - 1;
            spool.Add(tile, record);
            expected[tile] += record;
        }
        EXPECT_EQ(spool.Counts().size(), expected.size());
        for (const auto& [tile, text] : expected) {
            std::string read;
            spool.Read(tile, [&](std::string_view chunk) {
                EXPECT_TRUE(chunk.ends_with(';'));
                read += chunk;
            });
            EXPECT_EQ(read, text);
        }
    }
}

}  // namespace
}  // namespace orvo::tiling
