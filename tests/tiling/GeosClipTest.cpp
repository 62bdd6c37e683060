// Geometries cut to tiles: chosen cases, and what must hold for all of them.
#include <gtest/gtest.h>

#include <cmath>

#include "GeosRandom.h"
#include "GeosShapes.h"

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

using Cases = std::vector<std::pair<const char*, const char*>>;  // geometry, cut

void Check(const Cases& cases, const std::shared_ptr<IEnvelope>& envelope = kTile) {
    for (const auto& [wkt, expectedCut] : cases) {
        const auto cut = Cut(Read(wkt), envelope), expected = Read(expectedCut);
        const Handle found = Reread(*cut);
        EXPECT_EQ(Normal(*cut), Normal(*expected)) << wkt;
        EXPECT_EQ(cut->GeometryType(), expected->GeometryType()) << wkt;
        EXPECT_EQ(GEOSisValid_r(GeosContext(), found.get()), 1) << wkt;
    }
}

TEST(GeosClip, KindsStayAndPartsOfALowerDimensionGo) {
    Check({{"MULTIPOINT (5 5, 20 20)", "MULTIPOINT (5 5)"},
           {"POINT (15 5)", "POINT EMPTY"},
           {"LINESTRING (-5 5, 5 -5)", "LINESTRING EMPTY"},                                  // over a corner
           {"LINESTRING (5 5, 5 0, 8 0, 8 -5)", "LINESTRING (5 5, 5 0, 8 0)"},               // along an edge
           {"LINESTRING (5 5, 15 5, 15 8, 5 8, 5 5)", "LINESTRING (10 8, 5 8, 5 5, 10 5)"},  // a ring, in one
           {"MULTILINESTRING ((1 1, 2 2), (20 20, 30 30))", "MULTILINESTRING ((1 1, 2 2))"},
           {"POLYGON ((10 0, 20 0, 20 10, 10 10, 10 0))", "POLYGON EMPTY"},  // along an edge
           {"POLYGON ((-5 -5, 15 -5, 15 15, -5 15, -5 -5), (0 5, 5 2, 10 5, 5 8, 0 5))",
            "MULTIPOLYGON (((0 0, 10 0, 10 5, 5 2, 0 5, 0 0)), ((0 5, 5 8, 10 5, 10 10, 0 10, 0 5)))"},
           {"POLYGON ((-5 0, 5 5, 15 0, 5 10, -5 0))",
            "POLYGON ((0 2.5, 5 5, 10 2.5, 10 5, 5 10, 0 5, 0 2.5))"},
           // These cross themselves: the even-odd rule.
           {"POLYGON ((-2 0, 12 10, 12 0, -2 10, -2 0), (1 5, 2 5, 1 6, 1 5))",
            "MULTIPOLYGON (((0 1.4285714285714286, 5 5, 0 8.571428571428571, 0 1.4285714285714286), "
            "(1 5, 2 5, 1 6, 1 5)), ((10 1.4285714285714286, 10 8.571428571428571, 5 5, 10 "
            "1.4285714285714286)))"},
           {"POLYGON ((-5 2, 5 2, -5 6, -5 7, 5 8, -5 8, -5 2))",
            "MULTIPOLYGON (((0 2, 5 2, 0 4, 0 2)), ((0 7.5, 5 8, 0 8, 0 7.5)))"}});
    Check({{"LINESTRING (-5 5, 5 5)", "LINESTRING (0 5, 5 5)"},
           {"LINESTRING (5 -5, 5 15)", "LINESTRING EMPTY"},
           {"POLYGON ((1 1, 9 1, 9 9, 1 1))", "POLYGON EMPTY"},
           {"MULTIPOINT (5 5, 5 6)", "MULTIPOINT (5 5)"}},
          Rectangle(0, 5, 10, 5));
    Check(
        {{"LINESTRING (0 0, 1 1)", "LINESTRING EMPTY"}, {"POLYGON ((0 0, 1 0, 1 1, 0 0))", "POLYGON EMPTY"}},
        std::make_shared<memory::Envelope>());
}

/// Every vertex on the borders lies on the slope of the random geometries.
void ExpectHeights(const Geometry& piece, const GEOSGeometry& source) {
    const Handle border(Dimension(source) == 2 ? GEOSBoundary_r(GeosContext(), &source)
                                               : GEOSGeom_clone_r(GeosContext(), &source));
    for (const Coordinate& c : piece.Coordinates().Points()) {
        const Handle place(GEOSGeom_createPointFromXY_r(GeosContext(), c.x, c.y));
        double away = 0;
        GEOSDistance_r(GeosContext(), border.get(), place.get(), &away);
        EXPECT_FALSE(std::isnan(c.z));
        if (away < 1e-9) {
            EXPECT_NEAR(c.z, Random::Slope(c.x, c.y), 1e-6);
        }
    }
}

// The library's overlay, less what is of a lower dimension, is what a cut must be.
TEST(GeosClip, RandomPiecesAreWhatTheOverlaySays) {
    Random random;
    SCOPED_TRACE(random.Seed());
    const Handle tile = FromText("POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))");
    int cuts = 0;
    for (int n = 0; n < 4000; ++n) {
        const bool hasZ = n % 2 == 0;
        const std::string wkt = random.Geometry(n % 3 == 0 ? 0 : n % 3 == 1 ? 5 : 2.5, hasZ);
        SCOPED_TRACE(wkt);
        const Handle source = FromText(wkt);
        const auto piece = Cut(Geometry::FromWkb(Bytes(*source)), kTile);
        const Handle found = Reread(*piece);
        const Handle overlay(GEOSIntersection_r(GeosContext(), source.get(), tile.get()));
        const int dimension = Dimension(*source);
        ASSERT_EQ(GEOSisValid_r(GeosContext(), found.get()), 1);
        if (!piece->IsEmpty()) {
            ASSERT_EQ(Dimension(*found), dimension);
            ASSERT_TRUE((Bounds{0, 0, 10, 10}.Holds(piece->Extent())));
            if (hasZ) ExpectHeights(*piece, *source);
        }
        // The overlay counts once where lines or points lie on each other.
        if (GEOSisSimple_r(GeosContext(), source.get()) != 1) continue;
        const double expected = Measure(*overlay, dimension);
        ASSERT_NEAR(Measure(*found, dimension), expected, 1e-9);
        const Handle rest(GEOSDifference_r(GeosContext(), found.get(), overlay.get()));
        ASSERT_LT(dimension == 0 ? 0 : Measure(*rest, 2), 1e-9);
        cuts += expected > 0 && expected < Measure(*source, dimension) ? 1 : 0;
    }
    EXPECT_GT(cuts, 500);
}

}  // namespace
}  // namespace orvo::geos::test
