// Geometries and tiles: how they lie to each other, and what a cut leaves. Chosen cases, and what must hold
// for all.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

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
           {"POLYGON ((-5 0, 15 10, 15 0, -5 10, -5 0), (1 5, 2 5, 1 6, 1 5))",
            "MULTIPOLYGON (((0 2.5, 5 5, 0 7.5, 0 2.5), (1 5, 2 5, 1 6, 1 5)), "
            "((10 2.5, 10 7.5, 5 5, 10 2.5)))"},
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

/// Relation and geometry, each also put to the library itself.
void ExpectRelations(const Cases& cases, const std::shared_ptr<IEnvelope>& envelope) {
    for (const auto& [expected, wkt] : cases) {
        EXPECT_EQ(Ours(*Read(wkt), envelope), expected) << wkt;
        EXPECT_EQ(Theirs(*FromText(wkt), *envelope), expected) << wkt;
    }
}

// What random geometries hardly ever bring about.
TEST(GeosRelations, RareContactsWithATile) {
    ExpectRelations(
        {{"", "MULTIPOINT EMPTY"},
         {"", "MULTILINESTRING EMPTY"},
         {"", "POLYGON EMPTY"},
         {"", "LINESTRING (0 0, 10 0, 10 10, 0 10, 0 0)"},      // all edges
         {"w", "MULTILINESTRING ((0 0, 0 5), (1 1, 2 2))"},     // along an edge, and inside
         {"", "MULTILINESTRING ((0 0, 0 5), (20 20, 30 30))"},  // on an edge, and outside
         {"w", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (0 5, 5 4, 5 6, 0 5))"},
         {"o", "POLYGON ((-5 -5, 15 -5, 15 15, -5 15, -5 -5), (4 4, 6 4, 6 6, 4 4))"},
         {"", "POLYGON ((-9 -9, 19 -9, 19 19, -9 19, -9 -9), (0 0, 10 0, 10 10, 0 10, 0 0))"},  // in a hole
         {"", "POLYGON ((-5 -5, 15 -5, 15 15, 12 15, 12 -2, -2 -2, -2 15, -5 15, -5 -5))"},     // around it
         {"o", "MULTIPOLYGON (((-5 -5, 5 -5, 5 15, -5 15, -5 -5)), ((6 -5, 15 -5, 15 15, 6 15, 6 -5)))"},
         {"", "MULTIPOLYGON (((-5 -5, 15 -5, 15 15, -5 15, -5 -5)), ((20 20, 30 20, 30 30, 20 20)))"}},
        kTile);
    const auto flat = Rectangle(0, 0, 10, 0), place = Rectangle(3, 4, 3, 4);
    ExpectRelations(
        {{"w", "LINESTRING (2 0, 8 0)"}, {"o", "LINESTRING (5 0, 15 0)"}, {"", "LINESTRING (-5 0, 15 0)"}},
        flat);
    ExpectRelations({{"w", "POINT (3 4)"}, {"", "MULTIPOINT (3 4, 5 5)"}}, place);
}

TEST(GeosRelations, EmptyEnvelopesAndAreasThatCrossThemselvesAreAnswered) {
    for (const char* wkt : {"POINT (0 0)", "LINESTRING (0 0, 1 1)", "POLYGON ((0 0, 1 0, 1 1, 0 0))"})
        EXPECT_EQ(Ours(*Read(wkt), std::make_shared<memory::Envelope>()), "") << wkt;
    EXPECT_THROW(Read("POINT (0 0)")->Within(nullptr), RuntimeError) << "no reference, no answer";
    EXPECT_EQ(Ours(*Read("POLYGON ((2 2, 8 8, 8 2, 2 8, 2 2))"), kTile), "w") << "the boundary decides";
    EXPECT_EQ(Ours(*Read("POLYGON ((-2 2, 12 8, 12 2, -2 8, -2 2))"), kTile), "o");
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

// The library's overlay, less what is of a lower dimension, is what a cut must be. Coordinates snapped to
// half the tile's size bring about every kind of contact.
TEST(GeosClip, RandomPiecesAreWhatTheOverlaySaysAndRelationsWhatThePredicatesSay) {
    Random random;
    SCOPED_TRACE(random.Seed());
    const Handle tile = FromText("POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))");
    const std::shared_ptr<IEnvelope> envelopes[] = {kTile, Rectangle(0, 5, 10, 5), Rectangle(5, 5, 5, 5),
                                                    Rectangle(0.1, -2.3, 0.1 + 7.7, 2.5)};
    std::map<std::string, int> agreed;
    int cuts = 0;
    for (int n = 0; n < 4000; ++n) {
        const bool hasZ = n % 2 == 0;
        const std::string wkt = random.Geometry(n % 3 == 0 ? 0 : n % 3 == 1 ? 5 : 2.5, hasZ);
        SCOPED_TRACE(wkt);
        const Handle source = FromText(wkt);
        for (const auto& envelope : envelopes) {
            const std::string expected = Theirs(*source, *envelope);
            ASSERT_EQ(Ours(*Geometry::FromWkb(Bytes(*source)), envelope), expected);
            ++agreed[expected];
        }
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
    for (const char* relation : {"", "w", "c", "o"}) EXPECT_GT(agreed[relation], 100) << relation;
}

}  // namespace
}  // namespace orvo::geos::test
