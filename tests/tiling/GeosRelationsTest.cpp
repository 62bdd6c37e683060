// How geometries lie to an envelope: cases as data, each also put to the library itself.
#include <gtest/gtest.h>

#include <map>

#include "GeosRandom.h"
#include "GeosShapes.h"

namespace orvo::geos::test {
namespace {

using Cases = std::vector<std::pair<const char*, const char*>>;  // relation, geometry

void Check(const Cases& cases, const std::shared_ptr<IEnvelope>& envelope) {
    for (const auto& [expected, wkt] : cases) {
        EXPECT_EQ(Ours(*Read(wkt), envelope), expected) << wkt;
        EXPECT_EQ(Theirs(*FromText(wkt), *envelope), expected) << wkt;
    }
}

const auto kTile = Rectangle(0, 0, 10, 10);

// What random geometries hardly ever bring about.
TEST(GeosRelations, RareContactsWithATile) {
    Check({{"", "MULTIPOINT EMPTY"},
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
    Check({{"w", "LINESTRING (2 0, 8 0)"}, {"o", "LINESTRING (5 0, 15 0)"}, {"", "LINESTRING (-5 0, 15 0)"}},
          flat);
    Check({{"w", "POINT (3 4)"}, {"", "MULTIPOINT (3 4, 5 5)"}}, place);
}

TEST(GeosRelations, EmptyEnvelopesAndAreasThatCrossThemselvesAreAnswered) {
    for (const char* wkt : {"POINT (0 0)", "LINESTRING (0 0, 1 1)", "POLYGON ((0 0, 1 0, 1 1, 0 0))"})
        EXPECT_EQ(Ours(*Read(wkt), std::make_shared<memory::Envelope>()), "") << wkt;
    EXPECT_THROW(Read("POINT (0 0)")->Within(nullptr), RuntimeError) << "no reference, no answer";
    EXPECT_EQ(Ours(*Read("POLYGON ((2 2, 8 8, 8 2, 2 8, 2 2))"), kTile), "w") << "the boundary decides";
    EXPECT_EQ(Ours(*Read("POLYGON ((-2 2, 12 8, 12 2, -2 8, -2 2))"), kTile), "o");
}

// Coordinates snapped to half the tile's size bring about every kind of contact.
TEST(GeosRelations, AgreeWithTheLibraryOnRandomGeometries) {
    Random random;
    SCOPED_TRACE(random.Seed());
    std::map<std::string, int> agreed;
    for (int n = 0; n < 9000; ++n) {
        const std::string wkt = random.Geometry(n % 3 == 0 ? 0 : n % 3 == 1 ? 5 : 2.5);
        const auto envelope = n % 7 == 0    ? Rectangle(0, 5, 10, 5)
                              : n % 11 == 0 ? Rectangle(5, 5, 5, 5)
                              : n % 5 == 0  ? Rectangle(0.1, -2.3, 0.1 + 7.7, 2.5)
                                            : kTile;
        const Handle reference = FromText(wkt);
        const std::string expected = Theirs(*reference, *envelope);
        ASSERT_EQ(Ours(*Geometry::FromWkb(Bytes(*reference)), envelope), expected) << wkt;
        ++agreed[expected];
    }
    for (const char* relation : {"", "w", "c", "o"}) EXPECT_GT(agreed[relation], 100) << relation;
}

}  // namespace
}  // namespace orvo::geos::test
