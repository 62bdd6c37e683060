// Geometries cut to tiles: chosen cases, and what must hold for all of them.
#include <gtest/gtest.h>

#include <algorithm>

#include "GeosRandom.h"
#include "GeosShapes.h"
#include "tiling/vector/geometry/Split.h"

namespace orvo::geos::test {
namespace {

const auto kTile = Rectangle(0, 0, 10, 10);

std::shared_ptr<Geometry> Cut(const std::shared_ptr<Geometry>& geometry,
                              const std::shared_ptr<IEnvelope>& to) {
    const auto before = geometry->ToWkb();
    auto copy = std::dynamic_pointer_cast<Geometry>(geometry->Clone());
    copy->Clip(to);
    EXPECT_EQ(geometry->ToWkb(), before) << "a copy goes its own way";
    return copy;
}

bool SamePlaces(const GEOSGeometry& a, const GEOSGeometry& b) {
    return GEOSisEmpty_r(Library(), &a) == 1 ? GEOSisEmpty_r(Library(), &b) == 1
                                             : GEOSEquals_r(Library(), &a, &b) == 1;
}

struct CutCase {
    const char* what;
    const char* wkt;
    const char* cut;
};

void Check(const std::vector<CutCase>& cases, const std::shared_ptr<IEnvelope>& envelope = kTile) {
    for (const CutCase& c : cases) {
        SCOPED_TRACE(std::string(c.what) + ": " + c.wkt);
        const auto cut = Cut(Read(c.wkt), envelope);
        const Reference found = Reread(*cut), expected = FromText(c.cut);
        EXPECT_TRUE(SamePlaces(*found, *expected)) << ToText(*found);
        EXPECT_EQ(GEOSGeomTypeId_r(Library(), found.get()), GEOSGeomTypeId_r(Library(), expected.get()))
            << ToText(*found);
        EXPECT_EQ(GEOSisValid_r(Library(), found.get()), 1) << ToText(*found);
        EXPECT_EQ(cut->IsEmpty(), GEOSisEmpty_r(Library(), expected.get()) == 1);
    }
}

TEST(GeosClip, KindsStayAndPartsOfALowerDimensionGo) {
    Check({{"points inside and on edges", "MULTIPOINT (5 5, 0 0, 10 5, 11 5)", "MULTIPOINT (5 5, 0 0, 10 5)"},
           {"one left is still several", "MULTIPOINT (5 5, 20 20)", "MULTIPOINT (5 5)"},
           {"none left", "MULTIPOINT (20 20)", "MULTIPOINT EMPTY"},
           {"single", "POINT (5 5)", "POINT (5 5)"},
           {"single, outside", "POINT (15 5)", "POINT EMPTY"},
           {"in and out twice", "LINESTRING (-5 2, 5 2, 5 -5, 8 -5, 8 5, 15 5)",
            "MULTILINESTRING ((0 2, 5 2, 5 0), (8 0, 8 5, 10 5))"},
           {"line over a corner", "LINESTRING (-5 5, 5 -5)", "LINESTRING EMPTY"},
           {"in, along an edge, out", "LINESTRING (5 5, 5 0, 8 0, 8 -5)", "LINESTRING (5 5, 5 0, 8 0)"},
           {"a ring that starts inside stays in one", "LINESTRING (5 5, 15 5, 15 8, 5 8, 5 5)",
            "LINESTRING (10 8, 5 8, 5 5, 10 5)"},
           {"several lines stay several", "MULTILINESTRING ((1 1, 2 2), (20 20, 30 30))",
            "MULTILINESTRING ((1 1, 2 2))"},
           {"area touching along an edge", "POLYGON ((10 0, 20 0, 20 10, 10 10, 10 0))", "POLYGON EMPTY"},
           {"area in two pieces", "POLYGON ((-5 1, 15 1, 15 9, -5 9, -5 8, 14 8, 14 2, -5 2, -5 1))",
            "MULTIPOLYGON (((0 1, 10 1, 10 2, 0 2, 0 1)), ((0 8, 10 8, 10 9, 0 9, 0 8)))"},
           {"a hole pinches the tile in two",
            "POLYGON ((-5 -5, 15 -5, 15 15, -5 15, -5 -5), (0 5, 5 2, 10 5, 5 8, 0 5))",
            "MULTIPOLYGON (((0 0, 10 0, 10 5, 5 2, 0 5, 0 0)), ((0 5, 5 8, 10 5, 10 10, 0 10, 0 5)))"},
           {"pinched on the edge", "POLYGON ((-5 0, 5 5, 15 0, 5 10, -5 0))",
            "POLYGON ((0 2.5, 5 5, 10 2.5, 10 5, 5 10, 0 5, 0 2.5))"},
           {"several areas stay several",
            "MULTIPOLYGON (((1 1, 5 1, 5 5, 1 1)), ((20 20, 30 20, 30 30, 20 20)))",
            "MULTIPOLYGON (((1 1, 5 1, 5 5, 1 1)))"}});
}

TEST(GeosClip, AreasThatCrossThemselvesAreRepairedByTheEvenOddRule) {
    Check({{"crossing inside", "POLYGON ((-2 2, 12 8, 12 2, -2 8, -2 2))",
            "MULTIPOLYGON (((0 2.857142857142857, 5 5, 0 7.142857142857143, 0 2.857142857142857)), "
            "((5 5, 10 2.857142857142857, 10 7.142857142857143, 5 5)))"},
           {"crossing outside, either lobe inside", "POLYGON ((-5 2, 5 2, -8 6, -8 7, 5 8, -5 8, -5 2))",
            "MULTIPOLYGON (((0 2, 5 2, 0 3.5384615384615383, 0 2)), ((0 7.615384615384615, 5 8, 0 8, 0 "
            "7.615384615384615)))"}});
}

TEST(GeosClip, AnEnvelopeWithoutAreaLeavesLinesAndPointsOnly) {
    const auto flat = Rectangle(0, 5, 10, 5);
    Check({{"along it", "LINESTRING (-5 5, 5 5)", "LINESTRING (0 5, 5 5)"},
           {"across it", "LINESTRING (5 -5, 5 15)", "LINESTRING EMPTY"},
           {"area", "POLYGON ((1 1, 9 1, 9 9, 1 1))", "POLYGON EMPTY"},
           {"points", "MULTIPOINT (5 5, 5 6)", "MULTIPOINT (5 5)"}},
          flat);
    for (const char* wkt : {"MULTIPOINT (0 0)", "LINESTRING (0 0, 1 1)", "POLYGON ((0 0, 1 0, 1 1, 0 0))"}) {
        const auto cut = Cut(Read(wkt), std::make_shared<memory::Envelope>());
        EXPECT_TRUE(cut->IsEmpty()) << wkt;
        EXPECT_EQ(cut->GeometryType(), Read(wkt)->GeometryType());
    }
}

/// Every vertex on the borders lies on the slope of the random geometries.
void ExpectHeights(const Geometry& piece, const GEOSGeometry& source, double tolerance) {
    Reference border(GEOSGeom_getDimensions_r(Library(), &source) == 2
                         ? GEOSBoundary_r(Library(), &source)
                         : GEOSGeom_clone_r(Library(), &source));
    for (const Coordinate& c : piece.Coordinates().Points()) {
        EXPECT_FALSE(std::isnan(c.z));
        const Reference place(GEOSGeom_createPointFromXY_r(Library(), c.x, c.y));
        double away = 0;
        GEOSDistance_r(Library(), border.get(), place.get(), &away);
        if (away < 1e-9) {
            EXPECT_NEAR(c.z, Random::Slope(c.x, c.y), tolerance);
        }
    }
}

/// What the overlay of each part by itself amounts to: point by point, segment by segment, area by area.
double ExpectedMeasure(const GEOSGeometry& source, const GEOSGeometry& tile) {
    const int parts = GEOSGetNumGeometries_r(Library(), &source);
    double sum = 0;
    for (int n = 0; n < parts; ++n) {
        const GEOSGeometry* part = GEOSGetGeometryN_r(Library(), &source, n);
        const int steps = GEOSGeomTypeId_r(Library(), part) == GEOS_LINESTRING
                              ? GEOSGeomGetNumPoints_r(Library(), part) - 1
                              : 1;
        for (int step = 0; step < steps; ++step) {
            Reference piece(GEOSGeom_clone_r(Library(), part));
            if (GEOSGeomTypeId_r(Library(), part) == GEOS_LINESTRING) {
                GEOSGeometry* ends[] = {GEOSGeomGetPointN_r(Library(), part, step),
                                        GEOSGeomGetPointN_r(Library(), part, step + 1)};
                const Reference both(GEOSGeom_createCollection_r(Library(), GEOS_MULTIPOINT, ends, 2));
                piece.reset(GEOSConvexHull_r(Library(), both.get()));
            }
            const Reference held(GEOSIntersection_r(Library(), piece.get(), &tile));
            const bool isLower =
                GEOSGeom_getDimensions_r(Library(), held.get()) < GEOSGeom_getDimensions_r(Library(), part);
            sum += isLower ? 0 : Measure(*held);
        }
    }
    return sum;
}

bool IsSeveral(const GEOSGeometry& geometry) {
    return GEOSGeomTypeId_r(Library(), &geometry) >= GEOS_MULTIPOINT;
}

// The library's overlay, less what is of a lower dimension, is what a cut must be.
TEST(GeosClip, RandomPiecesAreWhatTheOverlaySays) {
    Random random;
    SCOPED_TRACE(random.Seed());
    int cuts = 0;
    for (int n = 0; n < 4000; ++n) {
        const bool hasZ = n % 2 == 0;
        const std::string wkt = random.Geometry(n % 3 == 0 ? 0 : n % 3 == 1 ? 5 : 2.5, hasZ);
        SCOPED_TRACE(wkt);
        const Reference source = FromText(wkt), tile = ReferenceOf(*kTile);
        const auto piece = Cut(Geometry::FromWkb(Bytes(*source)), kTile);
        const Reference found = Reread(*piece);
        const Reference overlay(GEOSIntersection_r(Library(), source.get(), tile.get()));
        const int dimension = GEOSGeom_getDimensions_r(Library(), source.get());
        ASSERT_EQ(GEOSisValid_r(Library(), found.get()), 1) << ToText(*found);
        if (!piece->IsEmpty()) {
            const auto parts = std::max(GEOSGetNumGeometries_r(Library(), found.get()), 1);
            ASSERT_EQ(IsSeveral(*found), IsSeveral(*source) || parts > 1) << ToText(*found);
            ASSERT_EQ(GEOSGeom_getDimensions_r(Library(), found.get()), dimension);
            ASSERT_TRUE((Bounds{0, 0, 10, 10}.Holds(piece->Extent()))) << ToText(*found);
        }
        const double expected = ExpectedMeasure(*source, *tile);
        ASSERT_NEAR(Measure(*found), expected, 1e-9) << ToText(*found);
        const Reference rest(GEOSDifference_r(Library(), found.get(), overlay.get()));
        ASSERT_LT(dimension == 2 ? Measure(*rest) : 0, 1e-9) << ToText(*found);
        if (hasZ && !piece->IsEmpty()) ExpectHeights(*piece, *source, 1e-6);
        cuts += expected > 0 && Measure(*found) < Measure(*source) ? 1 : 0;
    }
    EXPECT_GT(cuts, 500);
}

/// A grid over and beyond the random geometries, off or on their snapped coordinates.
TileGrid GridOf(std::size_t columns, std::size_t rows, double from, double to) {
    TileGrid grid;
    const auto edges = [&](std::size_t count, std::vector<Interval>& into) {
        const double size = (to - from) / static_cast<double>(count);
        for (std::size_t n = 0; n < count; ++n)
            into.push_back({from + static_cast<double>(n) * size, from + static_cast<double>(n + 1) * size});
    };
    edges(columns, grid.columns);
    edges(rows, grid.rows);
    return grid;
}

std::shared_ptr<IEnvelope> TileOf(const TileGrid& grid, std::size_t column, std::size_t row) {
    return Rectangle(grid.columns[column].low, grid.rows[row].low, grid.columns[column].high,
                     grid.rows[row].high);
}

/// Whatever vertex its rings start at.
std::string Normal(const Geometry& geometry) {
    const Reference normal = Reread(geometry);
    GEOSNormalize_r(Library(), normal.get());
    return ToText(*normal);
}

/// All pieces add up, and thinning out changes neither answers nor pieces.
void CheckGrid(const std::string& wkt, const TileGrid& grid) {
    const Reference source = FromText(wkt);
    const auto geometry = Geometry::FromWkb(Bytes(*source));
    const std::size_t count = grid.columns.size() * grid.rows.size();
    std::vector<std::string> pieces(count);
    ForEachTile(geometry, grid,
                [&](std::size_t column, std::size_t row, const std::shared_ptr<Geometry>& around) {
                    const auto tile = TileOf(grid, column, row);
                    EXPECT_EQ(Ours(*around, tile), Ours(*geometry, tile));
                    EXPECT_EQ(around->Covers(Bounds::Of(*tile)), geometry->Covers(Bounds::Of(*tile)));
                    auto& piece = pieces[row * grid.columns.size() + column];
                    EXPECT_TRUE(piece.empty()) << "visited twice";
                    const auto cut = Cut(around, tile);
                    if (!cut->IsEmpty()) piece = Normal(*cut);
                });
    double sum = 0;
    for (std::size_t n = 0; n < count; ++n) {
        const auto cut = Cut(geometry, TileOf(grid, n % grid.columns.size(), n / grid.columns.size()));
        EXPECT_EQ(pieces[n], cut->IsEmpty() ? "" : Normal(*cut));
        if (!cut->IsEmpty()) sum += Measure(*Reread(*cut));
    }
    EXPECT_NEAR(sum, Measure(*source), 1e-7);
}

TEST(GeosClip, PiecesOfAGridAddUpAndEqualThoseCutOneByOne) {
    Random random;
    SCOPED_TRACE(random.Seed());
    for (int n = 0; n < 500 && !testing::Test::HasFailure(); ++n) {
        // Borders along the tiles' edges belong to both sides, so that only areas add up there.
        const bool onEdges = n % 5 < 2;
        const auto some = [&] { return static_cast<std::size_t>(random.Whole(1, 9)); };
        const auto grid = onEdges ? GridOf(20, 20, -45, 55) : GridOf(some(), some(), -40.013, 50.017);
        const std::string wkt = onEdges      ? random.Area(n % 5 == 0 ? 5 : 2.5)
                                : n % 5 == 2 ? random.Line(0)
                                             : random.Area(n % 5 == 3 ? 0 : 2.5, n % 2 == 0);
        SCOPED_TRACE(wkt);
        CheckGrid(wkt, grid);
    }
}

}  // namespace
}  // namespace orvo::geos::test
