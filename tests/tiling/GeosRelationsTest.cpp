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

// What random geometries hardly ever bring about.
TEST(GeosRelations, RareContactsWithATile) {
    Check({{"no point", "POINT EMPTY", kNone},
           {"no points", "MULTIPOINT EMPTY", kNone},
           {"one point inside, one on an edge", "MULTIPOINT (1 1, 10 5)", kWithin},
           {"around, none inside", "MULTIPOINT (-1 5, 11 5)", kNone},
           {"no line", "LINESTRING EMPTY", kNone},
           {"no lines", "MULTILINESTRING EMPTY", kNone},
           {"corner to corner", "LINESTRING (0 0, 10 10)", kWithin},
           {"through two corners and beyond", "LINESTRING (-1 -1, 11 11)", kCrosses},
           {"around all edges", "LINESTRING (0 0, 10 0, 10 10, 0 10, 0 0)", kNone},
           {"along an edge, then inside", "LINESTRING (0 0, 10 0, 5 5)", kWithin},
           {"one part along an edge, one inside", "MULTILINESTRING ((0 0, 0 5), (1 1, 2 2))", kWithin},
           {"parts on edges and outside", "MULTILINESTRING ((0 0, 0 5), (20 20, 30 30))", kNone},
           {"no area", "POLYGON EMPTY", kNone},
           {"no areas", "MULTIPOLYGON EMPTY", kNone},
           {"equal", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))", kWithin},
           {"equal, with a hole", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 4 2, 4 4, 2 2))", kWithin},
           {"covering, sharing an edge", "POLYGON ((0 0, 20 0, 20 20, 0 20, 0 0))", kNone},
           {"covering but for a hole", "POLYGON ((-5 -5, 15 -5, 15 15, -5 15, -5 -5), (4 4, 6 4, 6 6, 4 4))",
            kOverlaps},
           {"the tile is a hole",
            "POLYGON ((-9 -9, 19 -9, 19 19, -9 19, -9 -9), (0 0, 10 0, 10 10, 0 10, 0 0))", kNone},
           {"around the tile without it",
            "POLYGON ((-5 -5, 15 -5, 15 15, 12 15, 12 -2, -2 -2, -2 15, -5 15, -5 -5))", kNone},
           {"hole touches the shell on the edge",
            "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (0 5, 5 4, 5 6, 0 5))", kWithin},
           {"parts touch at a point inside", "MULTIPOLYGON (((1 1, 5 5, 1 9, 1 1)), ((5 5, 9 1, 9 9, 5 5)))",
            kWithin},
           {"two parts share the tile between them",
            "MULTIPOLYGON (((-5 -5, 5 -5, 5 15, -5 15, -5 -5)), ((6 -5, 15 -5, 15 15, 6 15, 6 -5)))",
            kOverlaps},
           {"covering part and far part",
            "MULTIPOLYGON (((-5 -5, 15 -5, 15 15, -5 15, -5 -5)), ((20 20, 30 20, 30 30, 20 20)))", kNone}},
          kTile);
    Check({{"part of a flat envelope", "LINESTRING (2 0, 8 0)", kWithin},
           {"longer on one side", "LINESTRING (5 0, 15 0)", kOverlaps},
           {"holding it", "LINESTRING (-5 0, 15 0)", kNone}},
          Rectangle(0, 0, 10, 0));
    Check({{"the envelope's only point", "POINT (3 4)", kWithin},
           {"one of two", "MULTIPOINT (3 4, 5 5)", kNone}},
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
    for (int n = 0; n < 9000; ++n) {
        const std::string wkt = random.Geometry(n % 3 == 0 ? 0 : n % 3 == 1 ? 5 : 2.5);
        const auto envelope = n % 7 == 0    ? Rectangle(0, 5, 10, 5)
                              : n % 11 == 0 ? Rectangle(5, 5, 5, 5)
                              : n % 5 == 0  ? Rectangle(0.1, -2.3, 0.1 + 7.7, 2.5)
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
