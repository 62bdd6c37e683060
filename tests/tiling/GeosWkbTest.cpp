// Geometries in and out as well-known binary.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "GeosShapes.h"

namespace orvo::geos::test {
namespace {

struct KindCase {
    const char* wkt;
    GeometryType type;
    std::size_t parts;
};

TEST(GeosWkb, EveryKindComesBackAsItWas) {
    for (const KindCase& c :
         {KindCase{"POINT (1 2)", GeometryType::Point, 0},
          {"POINT Z (1 2 3)", GeometryType::Point, 0},
          {"POINT EMPTY", GeometryType::Point, 0},
          {"MULTIPOINT (1 2, 3 4)", GeometryType::Multipoint, 0},
          {"LINESTRING Z (1 2 3, 4 5 6)", GeometryType::Polyline, 1},
          {"LINESTRING EMPTY", GeometryType::Polyline, 0},
          {"MULTILINESTRING ((1 2, 3 4), (5 6, 7 8))", GeometryType::Polyline, 2},
          {"POLYGON ((0 0, 9 0, 9 9, 0 0), (2 1, 3 1, 3 2, 2 1))", GeometryType::Polygon, 1},
          {"POLYGON EMPTY", GeometryType::Polygon, 0},
          {"MULTIPOLYGON Z (((0 0 1, 9 0 2, 9 9 3, 0 0 1)))", GeometryType::Polygon, 1},
          {"MULTIPOLYGON EMPTY", GeometryType::Polygon, 0}}) {
        SCOPED_TRACE(c.wkt);
        const Reference reference = FromText(c.wkt);
        const auto geometry = Geometry::FromWkb(Bytes(*reference));
        EXPECT_EQ(geometry->GeometryType(), c.type);
        EXPECT_EQ(geometry->IsEmpty(), GEOSisEmpty_r(Library(), reference.get()) == 1);
        EXPECT_EQ(c.type == GeometryType::Polygon ? geometry->Coordinates().AreaCount()
                                                  : geometry->Coordinates().PathCount(),
                  c.parts);
        EXPECT_EQ(ToText(*Reread(*geometry)), ToText(*reference));
        EXPECT_EQ(std::dynamic_pointer_cast<IPoint>(geometry) != nullptr, c.type == GeometryType::Point);
    }
}

TEST(GeosWkb, BothByteOrdersAndFlavoursAreRead) {
    const std::vector<unsigned char> big = {0, 0, 0,    0, 1, 0x3f, 0xf0, 0, 0, 0, 0,
                                            0, 0, 0x40, 0, 0, 0,    0,    0, 0, 0};
    const auto point = As<IPoint>(Geometry::FromWkb(big));
    EXPECT_EQ(point->X(), 1);
    EXPECT_EQ(point->Y(), 2);
    std::vector<unsigned char> measured = {1, 0xb9, 0x0b, 0, 0};  // a point with height and measure
    for (const double number : {1.0, 2.0, 3.0, 4.0}) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(&number);
        measured.insert(measured.end(), bytes, bytes + sizeof number);
    }
    EXPECT_EQ(ToText(*Reread(*Geometry::FromWkb(measured))), "POINT Z (1 2 3)");
    measured[1] = 1, measured[2] = 0, measured[4] = 0xc0;  // the same in the extended form
    EXPECT_EQ(ToText(*Reread(*Geometry::FromWkb(measured))), "POINT Z (1 2 3)");
}

TEST(GeosWkb, OtherKindsPassThroughUncut) {
    const auto bytes = Bytes(*FromText("GEOMETRYCOLLECTION (POINT (5 5), LINESTRING (0 0, 1 1))"));
    const auto other = Geometry::FromWkb(bytes);
    const auto tile = Rectangle(0, 0, 10, 10);
    EXPECT_EQ(other->GeometryType(), GeometryType::Other);
    EXPECT_FALSE(other->IsEmpty());
    EXPECT_EQ(other->ToWkb(), bytes);
    EXPECT_EQ(Ours(*other, tile), (Relations{false, false, false}));
    EXPECT_THROW(other->Clip(tile), RuntimeError);
    EXPECT_EQ(other->ToWkb(), bytes);
}

std::string Refusal(const std::vector<unsigned char>& bytes) {
    try {
        Geometry::FromWkb(bytes);
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), static_cast<Long>(Fault::AutomationError));
        return error.Description();
    }
    return "";
}

TEST(GeosWkb, CorruptBytesAreRefusedWithAReason) {
    const auto polygon = Bytes(*FromText("POLYGON ((0 0, 9 0, 9 9, 0 0))"));
    for (std::size_t size = 0; size < polygon.size(); ++size)
        EXPECT_NE(Refusal({polygon.begin(), polygon.begin() + static_cast<std::ptrdiff_t>(size)}), "")
            << size;
    const auto changed = [&](std::size_t at, unsigned char value) {
        auto bytes = polygon;
        bytes[at] = value;
        return Refusal(bytes);
    };
    EXPECT_THAT(changed(0, 7), testing::HasSubstr("byte order"));
    EXPECT_THAT(changed(1, 99), testing::HasSubstr("WKB type"));
    EXPECT_THAT(changed(8, 0x7f),
                testing::HasSubstr("smaller than requested"));  // two thousand million rings
    EXPECT_THAT(changed(12, 0xff), testing::HasSubstr("smaller than requested"));  // as many points
    EXPECT_THAT(changed(13, 1), testing::HasSubstr("closed"));
    auto infinite = polygon;
    infinite[35] = 0xf0, infinite[36] = 0x7f;
    EXPECT_THAT(Refusal(infinite), testing::HasSubstr("finite"));
    EXPECT_THAT(Refusal(Bytes(*FromText("MULTIPOINT (1 1)"))), testing::IsEmpty());
    auto mixed = Bytes(*FromText("MULTIPOINT (1 1)"));
    mixed[10] = 2;
    EXPECT_THAT(Refusal(mixed), testing::HasSubstr("another kind"));
}

}  // namespace
}  // namespace orvo::geos::test
