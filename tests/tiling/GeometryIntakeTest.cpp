// Geometries in and out as well-known binary, from friend and foe.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "GeosRandom.h"
#include "GeosShapes.h"
#include "tiling/vector/geometry/Split.h"

namespace orvo::geos::test {
namespace {

using Blob = std::vector<unsigned char>;

// clang-format off
const char* const kEveryKind[] = {
    "POINT (1 2)", "POINT Z (1 2 3)", "POINT EMPTY", "MULTIPOINT (1 2, 3 4)", "LINESTRING EMPTY", "POLYGON EMPTY",
    "LINESTRING Z (1 2 3, 4 5 6)", "MULTILINESTRING ((1 2, 3 4), (5 6, 7 8))", "MULTIPOLYGON EMPTY",
    "POLYGON ((-1 -1, 15 0, 15 12, 0 10, -1 -1), (2 2, 4 2, 4 4, 2 2))", "POLYGON ((-2 2, 12 8, 12 2, -2 8, -2 2))",
    "MULTIPOLYGON Z (((0 0 1, 9 0 2, 9 9 3, 0 0 1)))", "GEOMETRYCOLLECTION (POINT (5 5), LINESTRING (0 0, 1 1))"};
// clang-format on

TEST(GeometryIntake, EveryKindComesBackAsItWas) {
    for (const char* wkt : kEveryKind) {
        const Handle reference = FromText(wkt);
        const auto geometry = Geometry::FromWkb(Bytes(*reference));
        EXPECT_EQ(Bytes(*Reread(*geometry)), Bytes(*reference)) << wkt;
        EXPECT_EQ(geometry->IsEmpty(), GEOSisEmpty_r(GeosContext(), reference.get()) == 1) << wkt;
    }
    const auto other = Read(kEveryKind[12]);
    EXPECT_EQ(other->GeometryType(), GeometryType::Other);
    EXPECT_EQ(Ours(*other, Rectangle(0, 0, 10, 10)), "");
    EXPECT_THROW(other->Clip(Rectangle(0, 0, 10, 10)), RuntimeError);
}

/// What comes of bytes that may be anything: relations, tiles and a cut, or a reason.
std::string Exercise(const Blob& bytes) {
    const auto tile = Rectangle(0, 0, 10, 10);
    const std::vector<Interval> edges{{0, 5}, {5, 10}, {10, 15}};
    try {
        const auto geometry = Geometry::FromWkb(bytes), again = Geometry::FromWkb(geometry->ToWkb());
        EXPECT_EQ(again->GeometryType(), geometry->GeometryType());
        EXPECT_EQ(again->IsEmpty(), geometry->IsEmpty());
        if (geometry->GeometryType() == GeometryType::Other) return "";
        Ours(*geometry, tile);
        ForEachTile(geometry, {edges, edges}, {}, [](std::size_t, std::size_t, const auto&) {});
        geometry->Clip(tile);
        EXPECT_TRUE(geometry->IsEmpty() || (Bounds{0, 0, 10, 10}.Holds(geometry->Extent())));
        return "";
    } catch (const RuntimeError& error) {
        EXPECT_NE(error.Description(), "");
        return error.Description();
    }
}

TEST(GeometryIntake, ForgedBytesAreRefusedWithAReason) {
    const Blob polygon = Bytes(*FromText("POLYGON ((0 0, 9 0, 9 9, 0 0))"));
    for (Blob early = polygon; !early.empty();) {
        early.pop_back();
        EXPECT_NE(Exercise(early), "") << early.size();
    }
    const auto forged = [&](std::size_t at, unsigned char value, unsigned char before) {
        Blob bytes = polygon;
        bytes[at] = value;
        if (at > 0) bytes[at - 1] = before;
        return Exercise(bytes);
    };
    EXPECT_THAT(forged(0, 7, 0), testing::HasSubstr("byte order"));
    EXPECT_THAT(forged(1, 99, 1), testing::HasSubstr("WKB type"));
    EXPECT_THAT(forged(8, 0x7f, 0), testing::HasSubstr("smaller than"));   // two thousand million rings
    EXPECT_THAT(forged(12, 0x7f, 0), testing::HasSubstr("smaller than"));  // as many points
    EXPECT_THAT(forged(13, 1, 0), testing::HasSubstr("closed"));
    EXPECT_THAT(forged(36, 0x7f, 0), testing::HasSubstr("1e100"));
    EXPECT_THAT(forged(36, 0x7f, 0xf0), testing::HasSubstr("finite"));
    Blob nested;  // deeper than any stack
    for (int n = 0; n < 1000000; ++n) nested.insert(nested.end(), {1, 6, 0, 0, 0, 1, 0, 0, 0});
    EXPECT_THAT(Exercise(nested), testing::HasSubstr("another kind"));
}

TEST(GeometryIntake, MutatedBytesDoNoHarm) {
    Random random;
    SCOPED_TRACE(random.Seed());
    int read = 0;
    for (int n = 0; n < 10000 && !HasFailure(); ++n) {
        const auto seed = Read(kEveryKind[static_cast<std::size_t>(n) % std::size(kEveryKind)]);
        Blob bytes = n % 2 == 0 ? seed->ToWkb() : Bytes(*Reread(*seed));  // ISO and extended
        for (int change = random.Whole(1, 4); change > 0; --change) {
            const Blob before = bytes;
            const int last = static_cast<int>(bytes.size()) - 1, kind = random.Whole(0, 3);
            const auto from = before.begin() + random.Whole(0, last);
            const auto to = bytes.begin() + random.Whole(0, last);
            if (kind == 0) *to = static_cast<unsigned char>(random.Whole(0, 255));
            if (kind == 1) *to = random.Whole(0, 1) == 0 ? 0 : 255;
            if (kind == 2) std::copy_n(from, std::min({8L, before.end() - from, bytes.end() - to}), to);
            if (kind == 3) bytes.insert(bytes.end(), from, before.end());
        }
        read += Exercise(bytes).empty() ? 1 : 0;
    }
    EXPECT_GT(read, 500);
}

}  // namespace
}  // namespace orvo::geos::test
