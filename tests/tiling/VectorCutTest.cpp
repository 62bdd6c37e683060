// The cutting of single geometries: the same pieces as tile by tile, and nothing lost.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <random>

#include "platform/linux/Platform.h"
#include "platform/memory/Envelope.h"
#include "tiling/vector/GeometryCutter.h"
#include "tiling/vector/TileSpool.h"
#include "tiling/vector/geometry/Convert.h"

namespace orvo::tiling {
namespace {

using geos::Bounds;
using geos::Coordinate;
using geos::Geometry;
using geos::Shape;
using Random = std::mt19937;
using Pieces = std::map<std::pair<Long, Long>, std::vector<unsigned char>>;

struct Layer final : ILayer {
    explicit Layer(const Bounds& b) {
        extent->XMin(b.xMin);
        extent->XMax(b.xMax);
        extent->YMin(b.yMin);
        extent->YMax(b.yMax);
    }
    std::shared_ptr<IEnvelope> AreaOfInterest() override { return extent; }
    std::shared_ptr<memory::Envelope> extent = std::make_shared<memory::Envelope>();
};

double Draw(Random& random, double low, double high) {
    return std::uniform_real_distribution(low, high)(random);
}

/// Whole and half numbers are likely to lie on edges.
double Place(Random& random, bool even) {
    const double place = Draw(random, 0, 40);
    return even ? std::round(place * 2) / 2 : place;
}

Shape Star(Random& random, bool even) {
    Shape shape;
    shape.type = GeometryType::Polygon;
    const Coordinate middle{Draw(random, 10, 30), Draw(random, 10, 30)};
    const int corners = 3 + static_cast<int>(random() % 40);
    for (const double size : {10.0, 1.5}) {  // a shell and a hole
        std::vector<Coordinate> ring;
        for (int i = 0; i < corners; ++i) {
            const double turn = 2 * std::numbers::pi * i / corners;
            const double reach = size * Draw(random, 0.5, 1);
            ring.push_back({middle.x + reach * std::cos(turn), middle.y + reach * std::sin(turn)});
            if (even) ring.back() = {std::round(ring.back().x), std::round(ring.back().y)};
        }
        ring.push_back(ring.front());
        if (size < 2 && even) break;  // rounding could make the hole touch itself
        shape.AddPath(ring);
    }
    shape.EndArea();
    return shape;
}

Shape Walk(Random& random, bool even) {
    Shape shape;
    shape.type = GeometryType::Polyline;
    std::vector<Coordinate> path{{Place(random, even), Place(random, even)}};
    for (int i = 0; i < 12; ++i) {
        Coordinate next = path.back();
        (random() % 2 == 0 ? next.x : next.y) = Place(random, even);
        if (!even) next.y = Place(random, even);
        path.push_back(next);
    }
    shape.AddPath(path);
    return shape;
}

Shape Cloud(Random& random, bool even) {
    Shape shape;
    shape.type = GeometryType::Multipoint;
    for (int i = 0; i < 20; ++i) shape.AddPoint({Place(random, even), Place(random, even)});
    return shape;
}

double Length(const Shape& shape) {
    double sum = 0;
    for (std::size_t n = 0; n < shape.PathCount(); ++n) {
        const auto path = shape.PathAt(n);
        for (std::size_t i = 1; i < path.size(); ++i)
            sum += std::hypot(path[i].x - path[i - 1].x, path[i].y - path[i - 1].y);
    }
    return sum;
}

double Area(const Shape& shape) {
    double sum = 0;
    for (std::size_t area = 0; area < shape.AreaCount(); ++area) {
        for (std::size_t n = shape.AreaBegin(area); n < shape.AreaEnd(area); ++n) {
            const auto ring = shape.PathAt(n);
            double twice = 0;
            for (std::size_t i = 1; i < ring.size(); ++i)
                twice += (ring[i - 1].x - ring[0].x) * (ring[i].y - ring[0].y) -
                         (ring[i].x - ring[0].x) * (ring[i - 1].y - ring[0].y);
            sum += (n == shape.AreaBegin(area) ? 1 : -1) * std::abs(twice) / 2;
        }
    }
    return sum;
}

class VectorCutTest : public testing::TestWithParam<unsigned> {
  protected:
    void SetUp() override { platform::Install(linux_platform::MakePlatform()); }
};

TEST_P(VectorCutTest, PiecesAreThoseOfClipAndAddUp) {
    Random random(GetParam());
    const bool even = GetParam() % 2 == 0;
    VectorGrid grid(std::make_shared<Layer>(Bounds{0, 0, 40, 40}),
                    {static_cast<Long>(1 + random() % 9), static_cast<Long>(1 + random() % 9), 0, 0}, "");
    for (const auto& make : {Star, Walk, Cloud}) {
        const auto whole = Geometry::Make(make(random, even));
        const Shape& shape = whole->Coordinates();
        Pieces pieces;
        double area = 0, length = 0;
        GeometryCutter cutter(grid, false, [&](Long column, Long row, const Geometry& piece) {
            pieces[{column, row}] = piece.ToWkb();
            area += Area(piece.Coordinates());
            length += Length(piece.Coordinates());
            EXPECT_TRUE(grid.BoundsOf(column, row).Holds(piece.Extent()));
        });
        cutter.Cut(whole);
        for (Long row = 1; row <= grid.Plan().rows; ++row) {
            for (Long column = 1; column <= grid.Plan().columns; ++column) {
                const auto clipped = grid.Tiles().Clip(column, row, whole);
                if (!clipped) continue;
                const auto found = pieces.find({column, row});
                ASSERT_NE(found, pieces.end()) << column << ", " << row;
                EXPECT_EQ(found->second, std::dynamic_pointer_cast<Geometry>(clipped)->ToWkb());
            }
        }
        // Rounded stars may cross themselves, and then a cut mends them.
        if (shape.type == GeometryType::Polygon &&
            GEOSisValid_r(geos::GeosContext(), geos::ToGeos(shape).get()) == 1) {
            EXPECT_NEAR(area, Area(shape), 1e-9 * Area(shape));
        }
        // A stretch on an edge between two tiles that the line enters both stands in both.
        if (shape.type == GeometryType::Polyline) {
            EXPECT_GE(length, Length(shape) * (1 - 1e-9));
            EXPECT_LE(length, Length(shape) * (even ? 2 : 1 + 1e-9));
        }
    }
}

TEST_P(VectorCutTest, GridsByCountsAndSizesCoverTheLayerWithoutGaps) {
    Random random(GetParam());
    const Bounds b{Draw(random, -1e6, 1e6), Draw(random, -1e6, 1e6), 0, 0};
    const Bounds area{b.xMin, b.yMin, b.xMin + Draw(random, 0, 1) * std::pow(10, GetParam() % 5),
                      b.yMin + 7.3};
    const auto count = static_cast<Long>(1 + random() % 20);
    for (const TileSizes& sizes : {TileSizes{0, 0, count, 3}, TileSizes{0, 0, 1, count},
                                   TileSizes{static_cast<Long>(1 + random() % 5000), -1, 0, 0}}) {
        VectorGrid grid(std::make_shared<Layer>(area), sizes, "x");
        EXPECT_EQ(grid.Tiles().TileCountX(), sizes.columns > 0 ? sizes.columns : grid.Plan().columns);
        EXPECT_EQ(grid.Tiles().TileCountY(), sizes.rows > 0 ? sizes.rows : 1);
        EXPECT_TRUE(grid.Whole().Holds(area));
        for (std::size_t i = 1; i < grid.Edges().columns.size(); ++i)
            EXPECT_EQ(grid.Edges().columns[i - 1].high, grid.Edges().columns[i].low);
        const Bounds last = Bounds::Of(*grid.TileAt(grid.Tiles().TileCountX(), grid.Tiles().TileCountY()));
        EXPECT_EQ(last.xMax, grid.Whole().xMax);
        EXPECT_EQ(last.yMax, grid.Whole().yMax);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, VectorCutTest, testing::Range(1U, 61U));

TEST(VectorGridTest, RoundingInTheExtentMakesNoFurtherColumn) {
    platform::Install(linux_platform::MakePlatform());
    const double east = 180.00000000000006;
    VectorGrid grid(std::make_shared<Layer>(Bounds{-180, -90, east, 83.6}), {30, 30, 0, 0}, "");
    EXPECT_EQ(grid.Plan().columns, 12);
    EXPECT_EQ(grid.Plan().rows, 6);
    Shape place;
    place.type = GeometryType::Point;
    place.AddPoint({east, 0});
    EXPECT_EQ(grid.Locate(Geometry::Make(std::move(place))).column, 12);
}

TEST(TileSpoolTest, KeepsTheOrderWhateverTheMemory) {
    for (const std::size_t memory : {std::size_t{0}, std::size_t{50}, std::size_t{1} << 20U}) {
        TileSpool spool(testing::TempDir(), memory);
        std::map<std::int64_t, std::string> expected;
        Random random(7);
        for (int i = 0; i < 500; ++i) {
            const auto tile = static_cast<std::int64_t>(random() % 9) - 1;
            const std::string record = std::string(random() % 30, 'x') + std::to_string(i) + ";";
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
