#include "tiling/vector/geometry/Wkb.h"

#include <cstdint>
#include <string>

#include "platform/RuntimeError.h"
#include "tiling/vector/geometry/Convert.h"

namespace orvo::geos {
namespace {

constexpr std::uint32_t kFirstMulti = 4, kLastMulti = 6, kLastStandard = 17;
constexpr double kLargest = 1e100;  // products of coordinates stay numbers

[[noreturn]] void Fail(const std::string& why) {
    throw RuntimeError(static_cast<Long>(Fault::AutomationError), "its geometry " + why);
}

/// Walks over the heads of parts. GEOS follows collections in collections until the stack ends, so that one
/// has to look before.
class Walk {
  public:
    struct Head {
        std::uint32_t kind;  ///< 1 to 17 where it is a standard one
        std::size_t pointSize;
    };

    explicit Walk(std::span<const unsigned char> bytes) : rest_(bytes) {}

    Head ReadHead() {
        const unsigned char order = Take(1, 1)[0];
        if (order > 1) Fail("names no byte order");
        isLittle_ = order == 1;
        const std::uint32_t code = ReadNumber();
        if ((code & 0x20000000U) != 0) Take(1, sizeof code);  // a reference system
        const std::uint32_t flavour = (code & 0xffffU) / 1000;
        const bool hasZ = (code & 0x80000000U) != 0 || flavour == 1 || flavour == 3;
        const bool hasM = (code & 0x40000000U) != 0 || flavour == 2 || flavour == 3;
        return {(code & 0xffffU) % 1000, sizeof(double) * (2U + unsigned{hasZ} + unsigned{hasM})};
    }

    void CheckParts(std::uint32_t kind) {
        for (std::uint32_t parts = ReadNumber(); parts > 0; --parts) {
            const Head part = ReadHead();
            if (part.kind + kFirstMulti - 1 != kind) Fail("holds a part of another kind");
            if (part.kind == 1) Take(1, part.pointSize);
            for (std::uint32_t paths = part.kind == 3 ? ReadNumber() : part.kind - 1; paths > 0; --paths)
                Take(ReadNumber(), part.pointSize);
        }
    }

  private:
    std::uint32_t ReadNumber() {
        std::uint32_t number = 0;
        const auto bytes = Take(1, sizeof number);
        for (std::size_t n = 0; n < sizeof number; ++n)
            number = (number << 8U) | bytes[isLittle_ ? sizeof number - 1 - n : n];
        return number;
    }

    std::span<const unsigned char> Take(std::size_t count, std::size_t size) {
        if (count > rest_.size() / size) Fail("ends early");
        const auto taken = rest_.first(count * size);
        rest_ = rest_.subspan(count * size);
        return taken;
    }

    std::span<const unsigned char> rest_;
    bool isLittle_ = true;
};

GeometryType TypeOf(std::uint32_t kind) {
    constexpr GeometryType kTypes[] = {GeometryType::Point,    GeometryType::Polyline,
                                       GeometryType::Polygon,  GeometryType::Multipoint,
                                       GeometryType::Polyline, GeometryType::Polygon};
    return kind >= 1 && kind <= std::size(kTypes) ? kTypes[kind - 1] : GeometryType::Other;
}

Handle Parse(std::span<const unsigned char> bytes) {
    const auto destroy = [](GEOSWKBReader* reader) { GEOSWKBReader_destroy_r(GeosContext(), reader); };
    const std::unique_ptr<GEOSWKBReader, decltype(destroy)> reader(GEOSWKBReader_create_r(GeosContext()),
                                                                   destroy);
    return Owned(GEOSWKBReader_read_r(GeosContext(), reader.get(), bytes.data(), bytes.size()));
}

void CheckCoordinates(const Shape& shape) {
    for (const Coordinate& c : shape.Points()) {
        if (!std::isfinite(c.x) || !std::isfinite(c.y)) Fail("holds coordinates that are not finite numbers");
        if (std::abs(c.x) > kLargest || std::abs(c.y) > kLargest) Fail("holds coordinates beyond 1e100");
    }
}

double MeanZ(const Shape& shape) {
    double sum = 0, count = 0;
    for (const Coordinate& c : shape.Points()) {
        if (std::isnan(c.z)) continue;
        sum += c.z;
        count += 1;
    }
    return count > 0 ? sum / count : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

Shape ReadWkb(std::span<const unsigned char> bytes) {
    Walk walk(bytes);
    const std::uint32_t kind = walk.ReadHead().kind;
    Shape like;
    like.type = TypeOf(kind);
    like.isMulti = kind >= kFirstMulti && kind <= kLastMulti;
    if (like.isMulti) walk.CheckParts(kind);
    if (like.type == GeometryType::Other && kind > 0 && kind <= kLastStandard) return like;
    const Handle geometry = Parse(bytes);
    like.hasZ = GEOSGeom_getCoordinateDimension_r(GeosContext(), geometry.get()) == 3;
    Shape shape = FromGeos(*geometry, like);
    CheckCoordinates(shape);
    if (shape.hasZ) shape.meanZ = MeanZ(shape);
    return shape;
}

std::vector<unsigned char> WriteWkb(const Shape& shape) {
    if (shape.type == GeometryType::Other)
        throw RuntimeError(Fault::PropertyNotSupported, "WKB of a geometry of another kind");
    const auto destroy = [](GEOSWKBWriter* writer) { GEOSWKBWriter_destroy_r(GeosContext(), writer); };
    const std::unique_ptr<GEOSWKBWriter, decltype(destroy)> writer(GEOSWKBWriter_create_r(GeosContext()),
                                                                   destroy);
    GEOSWKBWriter_setOutputDimension_r(GeosContext(), writer.get(), shape.hasZ ? 3 : 2);
    GEOSWKBWriter_setByteOrder_r(GeosContext(), writer.get(), GEOS_WKB_NDR);
    GEOSWKBWriter_setFlavor_r(GeosContext(), writer.get(), GEOS_WKB_ISO);
    const auto release = [](unsigned char* bytes) { GEOSFree_r(GeosContext(), bytes); };
    std::size_t size = 0;
    const std::unique_ptr<unsigned char, decltype(release)> bytes(
        GEOSWKBWriter_write_r(GeosContext(), writer.get(), ToGeos(shape).get(), &size), release);
    if (!bytes) FailAsGeosDid();
    return {bytes.get(), bytes.get() + size};
}

}  // namespace orvo::geos
