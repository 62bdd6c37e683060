// How geometries lie to an envelope: cases as data, each also put to the library itself.
#include <gtest/gtest.h>

#include "GeosRandom.h"
#include "GeosShapes.h"

namespace orvo::geos::test {
namespace {

struct RelationCase {
    const char* what;
    const char* wkt;
    Relations expected;
};

constexpr Relations kNone{false, false, false}, kWithin{true, false, false}, kCrosses{false, true, false},
    kOverlaps{false, false, true};

void Check(const std::vector<RelationCase>& cases, const std::shared_ptr<IEnvelope>& envelope) {
    for (const RelationCase& c : cases) {
        SCOPED_TRACE(std::string(c.what) + ": " + c.wkt);
        const Reference geometry = FromText(c.wkt);
        EXPECT_EQ(Ours(*Geometry::FromWkb(Bytes(*geometry)), envelope), c.expected);
        EXPECT_EQ(Theirs(*geometry, *envelope), c.expected);
    }
}

const auto kTile = Rectangle(0, 0, 10, 10);

TEST(GeosRelations, PointsToATile) {
    Check({{"inside", "POINT (5 5)", kWithin},
           {"on an edge", "POINT (0 5)", kNone},
           {"on a corner", "POINT (10 10)", kNone},
           {"outside", "POINT (11 5)", kNone},
           {"empty", "POINT EMPTY", kNone},
           {"all inside", "MULTIPOINT (1 1, 9 9)", kWithin},
           {"one inside, one on an edge", "MULTIPOINT (1 1, 10 5)", kWithin},
           {"all on edges", "MULTIPOINT (0 0, 10 5)", kNone},
           {"inside and outside", "MULTIPOINT (1 1, 11 5)", kCrosses},
           {"on an edge and outside", "MULTIPOINT (0 1, 11 5)", kNone},
           {"around, none inside", "MULTIPOINT (-1 5, 11 5)", kNone},
           {"empty multipoint", "MULTIPOINT EMPTY", kNone}},
          kTile);
}

TEST(GeosRelations, LinesToATile) {
    Check({{"inside", "LINESTRING (1 1, 9 9)", kWithin},
           {"inside, ending on an edge", "LINESTRING (5 5, 10 5)", kWithin},
           {"from edge to edge", "LINESTRING (0 5, 10 5)", kWithin},
           {"corner to corner", "LINESTRING (0 0, 10 10)", kWithin},
           {"along one edge", "LINESTRING (2 0, 8 0)", kNone},
           {"along two edges", "LINESTRING (0 0, 10 0, 10 10)", kNone},
           {"around all edges", "LINESTRING (0 0, 10 0, 10 10, 0 10, 0 0)", kNone},
           {"along an edge, then inside", "LINESTRING (0 0, 10 0, 5 5)", kWithin},
           {"out along an edge", "LINESTRING (-5 0, 15 0)", kNone},
           {"through", "LINESTRING (-5 5, 15 5)", kCrosses},
           {"through, slanted, no vertex inside", "LINESTRING (-5 3, 15 8)", kCrosses},
           {"through two corners and beyond", "LINESTRING (-1 -1, 11 11)", kCrosses},
           {"over a corner only", "LINESTRING (-5 5, 5 -5)", kNone},
           {"past a corner", "LINESTRING (-5 4, 4 -5)", kNone},
           {"just inside a corner", "LINESTRING (-5 6, 6 -5)", kCrosses},
           {"out from inside", "LINESTRING (5 5, 15 5)", kCrosses},
           {"out from an edge", "LINESTRING (10 5, 15 5)", kNone},
           {"touching an edge with a vertex", "LINESTRING (-5 0, 0 5, -5 10)", kNone},
           {"out and back on an edge", "LINESTRING (5 5, 10 5, 10 8, 12 8)", kCrosses},
           {"apart", "LINESTRING (20 20, 30 30)", kNone},
           {"bounds meet, the line does not", "LINESTRING (-5 5, -5 15, 5 15)", kNone},
           {"one part inside, one outside", "MULTILINESTRING ((1 1, 2 2), (20 20, 30 30))", kCrosses},
           {"one part along an edge, one inside", "MULTILINESTRING ((0 0, 0 5), (1 1, 2 2))", kWithin},
           {"parts on edges and outside", "MULTILINESTRING ((0 0, 0 5), (20 20, 30 30))", kNone},
           {"crossing itself inside", "LINESTRING (1 1, 9 9, 9 1, 1 9)", kWithin},
           {"empty", "LINESTRING EMPTY", kNone},
           {"empty multiline", "MULTILINESTRING EMPTY", kNone}},
          kTile);
}

TEST(GeosRelations, AreasToATile) {
    Check({{"inside", "POLYGON ((1 1, 9 1, 5 9, 1 1))", kWithin},
           {"inside, along an edge", "POLYGON ((0 1, 9 1, 9 9, 0 9, 0 1))", kWithin},
           {"equal", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))", kWithin},
           {"equal, with a hole", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 4 2, 4 4, 2 2))", kWithin},
           {"covering", "POLYGON ((-5 -5, 15 -5, 15 15, -5 15, -5 -5))", kNone},
           {"covering, sharing an edge", "POLYGON ((0 0, 20 0, 20 20, 0 20, 0 0))", kNone},
           {"covering but for a hole", "POLYGON ((-5 -5, 15 -5, 15 15, -5 15, -5 -5), (4 4, 6 4, 6 6, 4 4))",
            kOverlaps},
           {"the tile lies in a hole",
            "POLYGON ((-9 -9, 19 -9, 19 19, -9 19, -9 -9), (-1 -1, 11 -1, 11 11, -1 11, -1 -1))", kNone},
           {"the tile is a hole",
            "POLYGON ((-9 -9, 19 -9, 19 19, -9 19, -9 -9), (0 0, 10 0, 10 10, 0 10, 0 0))", kNone},
           {"half in", "POLYGON ((5 -5, 15 -5, 15 15, 5 15, 5 -5))", kOverlaps},
           {"a corner in", "POLYGON ((5 5, 15 5, 15 15, 5 15, 5 5))", kOverlaps},
           {"a wedge through, no vertex inside", "POLYGON ((-5 4, 15 5, -5 6, -5 4))", kOverlaps},
           {"touching along an edge", "POLYGON ((10 0, 20 0, 20 10, 10 10, 10 0))", kNone},
           {"touching a corner", "POLYGON ((10 10, 20 10, 20 20, 10 10))", kNone},
           {"a slanted side over a corner", "POLYGON ((15 5, 20 20, 5 15, 15 5))", kNone},
           {"a slanted side cutting a corner", "POLYGON ((14 5, 20 20, 5 14, 14 5))", kOverlaps},
           {"around the tile without it",
            "POLYGON ((-5 -5, 15 -5, 15 15, 12 15, 12 -2, -2 -2, -2 15, -5 15, -5 -5))", kNone},
           {"apart", "POLYGON ((20 20, 30 20, 30 30, 20 20))", kNone},
           {"shell touches itself inside", "POLYGON ((-5 2, 5 5, 15 2, 15 8, 5 5.5, -5 8, -5 2))", kOverlaps},
           {"hole touches the shell on the edge",
            "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (0 5, 5 4, 5 6, 0 5))", kWithin},
           {"parts touch at a point inside", "MULTIPOLYGON (((1 1, 5 5, 1 9, 1 1)), ((5 5, 9 1, 9 9, 5 5)))",
            kWithin},
           {"one part inside, one outside",
            "MULTIPOLYGON (((1 1, 5 1, 5 5, 1 1)), ((20 20, 30 20, 30 30, 20 20)))", kOverlaps},
           {"two parts share the tile between them",
            "MULTIPOLYGON (((-5 -5, 5 -5, 5 15, -5 15, -5 -5)), ((6 -5, 15 -5, 15 15, 6 15, 6 -5)))",
            kOverlaps},
           {"covering part and far part",
            "MULTIPOLYGON (((-5 -5, 15 -5, 15 15, -5 15, -5 -5)), ((20 20, 30 20, 30 30, 20 20)))", kNone},
           {"empty", "POLYGON EMPTY", kNone},
           {"empty multipolygon", "MULTIPOLYGON EMPTY", kNone}},
          kTile);
}

TEST(GeosRelations, AnEnvelopeWithoutHeightIsALine) {
    Check({{"point on it", "POINT (5 0)", kWithin},
           {"point at its end", "POINT (0 0)", kNone},
           {"points on it and beside", "MULTIPOINT (5 0, 5 5)", kCrosses},
           {"part of it", "LINESTRING (2 0, 8 0)", kWithin},
           {"longer on one side", "LINESTRING (5 0, 15 0)", kOverlaps},
           {"holding it", "LINESTRING (-5 0, 15 0)", kNone},
           {"crossing it", "LINESTRING (5 -5, 5 5)", kCrosses},
           {"ending on it", "LINESTRING (5 0, 5 5)", kNone},
           {"area across it", "POLYGON ((2 -5, 8 -5, 8 5, 2 5, 2 -5))", kCrosses},
           {"area beside it", "POLYGON ((2 0, 8 0, 8 5, 2 5, 2 0))", kNone}},
          Rectangle(0, 0, 10, 0));
}

TEST(GeosRelations, AnEnvelopeWithoutAnySizeIsAPoint) {
    Check({{"the same point", "POINT (3 4)", kWithin},
           {"another point", "POINT (3 5)", kNone},
           {"one of the points", "MULTIPOINT (3 4, 5 5)", kNone},
           {"line through it", "LINESTRING (0 4, 10 4)", kNone},
           {"area around it", "POLYGON ((0 0, 10 0, 10 10, 0 0))", kNone}},
          Rectangle(3, 4, 3, 4));
}

TEST(GeosRelations, AnEmptyEnvelopeRelatesToNothing) {
    const auto empty = std::make_shared<memory::Envelope>();
    for (const char* wkt : {"POINT (0 0)", "LINESTRING (0 0, 1 1)", "POLYGON ((0 0, 1 0, 1 1, 0 0))"})
        EXPECT_EQ(Ours(*Read(wkt), empty), kNone) << wkt;
    try {
        Read("POINT (0 0)")->Within(nullptr);
        ADD_FAILURE() << "no reference, no answer";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), static_cast<Long>(Fault::ObjectNotSet));
    }
}

// An area that crosses itself: no failure, the boundary decides.
TEST(GeosRelations, AreasThatCrossThemselvesAreAnswered) {
    EXPECT_EQ(Ours(*Read("POLYGON ((2 2, 8 8, 8 2, 2 8, 2 2))"), kTile), kWithin);
    EXPECT_EQ(Ours(*Read("POLYGON ((-2 2, 12 8, 12 2, -2 8, -2 2))"), kTile), kOverlaps);
    EXPECT_EQ(Ours(*Read("POLYGON ((20 2, 28 8, 28 2, 20 8, 20 2))"), kTile), kNone);
}

// Coordinates snapped to half the tile's size bring about every kind of contact.
TEST(GeosRelations, AgreeWithTheLibraryOnRandomGeometries) {
    Random random;
    SCOPED_TRACE(random.Seed());
    int agreed[3] = {0, 0, 0};
    for (int n = 0; n < 6000; ++n) {
        const std::string wkt = random.Geometry(n % 3 == 0 ? 0 : n % 3 == 1 ? 5 : 2.5);
        const auto envelope = n % 7 == 0   ? Rectangle(0, 5, 10, 5)
                              : n % 5 == 0 ? Rectangle(0.1, -2.3, 0.1 + 7.7, 2.5)
                                           : kTile;
        const Reference reference = FromText(wkt);
        const Relations expected = Theirs(*reference, *envelope);
        ASSERT_EQ(Ours(*Geometry::FromWkb(Bytes(*reference)), envelope), expected) << wkt;
        agreed[0] += expected.within ? 1 : 0;
        agreed[1] += expected.crosses ? 1 : 0;
        agreed[2] += expected.overlaps ? 1 : 0;
    }
    for (const int count : agreed) EXPECT_GT(count, 100) << "the random geometries miss a relation";
}

}  // namespace
}  // namespace orvo::geos::test
