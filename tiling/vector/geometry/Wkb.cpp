#include "tiling/vector/geometry/Wkb.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

#include "platform/RuntimeError.h"

namespace orvo::geos {
namespace {

constexpr std::uint32_t kPoint = 1, kLine = 2, kPolygon = 3, kMultiPoint = 4, kMultiLine = 5,
                        kMultiPolygon = 6;
constexpr std::uint32_t kLastCode = 17;  // triangles close the list of standard codes
constexpr std::uint32_t kExtendedZ = 0x80000000, kExtendedM = 0x40000000, kExtendedSrid = 0x20000000;
constexpr double kLargest = 1e100;      // products of coordinates stay numbers
constexpr std::size_t kPartHeader = 5;  // byte order and type

[[noreturn]] void Fail(const std::string& why) {
    throw RuntimeError(static_cast<Long>(Fault::AutomationError), "its geometry " + why);
}

struct Header {
    std::uint32_t kind;
    bool hasZ, hasM;
    std::size_t PointSize() const {
        return sizeof(double) * (2U + static_cast<unsigned>(hasZ) + static_cast<unsigned>(hasM));
    }
};

class Reader {
  public:
    explicit Reader(std::span<const unsigned char> bytes) : bytes_(bytes) {}

    Shape Read() {
        const Header head = ReadHeader();
        shape_.hasZ = head.hasZ;
        shape_.isMulti = head.kind >= kMultiPoint && head.kind <= kMultiPolygon;
        shape_.type = TypeOf(head.kind);
        if (shape_.type != GeometryType::Other) ReadBody(head);
        if (shape_.hasZ) shape_.meanZ = MeanZ();
        return std::move(shape_);
    }

  private:
    static GeometryType TypeOf(std::uint32_t kind) {
        switch (kind) {
            case kPoint:
                return GeometryType::Point;
            case kMultiPoint:
                return GeometryType::Multipoint;
            case kLine:
            case kMultiLine:
                return GeometryType::Polyline;
            case kPolygon:
            case kMultiPolygon:
                return GeometryType::Polygon;
            default:
                return GeometryType::Other;
        }
    }

    double MeanZ() const {
        double sum = 0, count = 0;
        for (const Coordinate& c : shape_.Points()) {
            if (std::isnan(c.z)) continue;
            sum += c.z;
            count += 1;
        }
        return count > 0 ? sum / count : std::numeric_limits<double>::quiet_NaN();
    }

    void ReadBody(const Header& head) {
        switch (head.kind) {
            case kPoint:
                return ReadPoint(head);
            case kLine:
                return ReadLine(head);
            case kPolygon:
                return ReadPolygon(head);
            default:
                return ReadParts(head);
        }
    }

    void ReadParts(const Header& head) {
        const std::uint32_t count = ReadCount(kPartHeader + sizeof(std::uint32_t));
        for (std::uint32_t n = 0; n < count; ++n) {
            const Header part = ReadHeader();
            if (part.kind + 3 != head.kind) Fail("holds a part of another kind");
            shape_.hasZ = shape_.hasZ || part.hasZ;
            ReadBody(part);
        }
    }

    void ReadPoint(const Header& head) {
        const Coordinate c = ReadCoordinate(head);
        if (std::isnan(c.x) && std::isnan(c.y)) return;  // how an empty point is written
        CheckFinite(c);
        shape_.AddPoint(c);
    }

    void ReadLine(const Header& head) {
        ReadPath(head);
        if (path_.size() == 1) Fail("holds a line of one point");
        if (!path_.empty()) shape_.AddPath(path_);
    }

    void ReadPolygon(const Header& head) {
        const std::uint32_t rings = ReadCount(sizeof(std::uint32_t));
        for (std::uint32_t n = 0; n < rings; ++n) {
            ReadPath(head);
            if (path_.empty()) {
                if (n == 0) return SkipEmptyRings(head, rings - 1);
                continue;
            }
            if (path_.size() < 4) Fail("holds a ring of fewer than four points");
            if (!SamePlace(path_.front(), path_.back())) Fail("holds a ring that is not closed");
            shape_.AddPath(path_);
        }
        shape_.EndArea();
    }

    void SkipEmptyRings(const Header& head, std::uint32_t count) {
        for (std::uint32_t n = 0; n < count; ++n) {
            ReadPath(head);
            if (!path_.empty()) Fail("holds a hole without a shell");
        }
    }

    void ReadPath(const Header& head) {
        const std::uint32_t count = ReadCount(head.PointSize());
        path_.clear();
        path_.reserve(count);
        for (std::uint32_t n = 0; n < count; ++n) {
            path_.push_back(ReadCoordinate(head));
            CheckFinite(path_.back());
        }
    }

    Coordinate ReadCoordinate(const Header& head) {
        Coordinate c;
        c.x = ReadNumber<double, std::uint64_t>();
        c.y = ReadNumber<double, std::uint64_t>();
        if (head.hasZ) c.z = ReadNumber<double, std::uint64_t>();
        if (head.hasM) ReadNumber<double, std::uint64_t>();
        return c;
    }

    static void CheckFinite(const Coordinate& c) {
        if (!std::isfinite(c.x) || !std::isfinite(c.y)) Fail("holds coordinates that are not finite numbers");
        if (std::abs(c.x) > kLargest || std::abs(c.y) > kLargest) Fail("holds coordinates beyond 1e100");
    }

    Header ReadHeader() {
        const auto order = Take(1)[0];
        if (order > 1) Fail("names no byte order");
        swap_ = (order == 1) != (std::endian::native == std::endian::little);
        auto code = ReadNumber<std::uint32_t, std::uint32_t>();
        Header head{0, (code & kExtendedZ) != 0, (code & kExtendedM) != 0};
        if ((code & kExtendedSrid) != 0) Take(sizeof(std::uint32_t));
        code &= ~(kExtendedZ | kExtendedM | kExtendedSrid);
        const std::uint32_t flavour = code / 1000;
        head.hasZ = head.hasZ || flavour == 1 || flavour == 3;
        head.hasM = head.hasM || flavour == 2 || flavour == 3;
        head.kind = code % 1000;
        if (flavour > 3 || head.kind == 0 || head.kind > kLastCode) Fail("names no known kind of geometry");
        return head;
    }

    /// A count of things of at least `size` bytes each: never more than the rest of the input can hold.
    std::uint32_t ReadCount(std::size_t size) {
        const auto count = ReadNumber<std::uint32_t, std::uint32_t>();
        if (count > (bytes_.size() - at_) / size) Fail("counts more than it holds");
        return count;
    }

    template <class Number, class Bits>
    Number ReadNumber() {
        static_assert(sizeof(Number) == sizeof(Bits));
        Bits bits = 0;
        std::memcpy(&bits, Take(sizeof bits).data(), sizeof bits);
        if (swap_) {
            Bits turned = 0;
            for (std::size_t n = 0; n < sizeof bits; ++n)
                turned = (turned << 8U) | ((bits >> (8 * n)) & 0xffU);
            bits = turned;
        }
        return std::bit_cast<Number>(bits);
    }

    std::span<const unsigned char> Take(std::size_t count) {
        if (bytes_.size() - at_ < count) Fail("ends early");
        at_ += count;
        return bytes_.subspan(at_ - count, count);
    }

    std::span<const unsigned char> bytes_;
    std::size_t at_ = 0;
    bool swap_ = false;
    Shape shape_;
    std::vector<Coordinate> path_;
};

class Writer {
  public:
    explicit Writer(const Shape& shape) : shape_(shape) {
        bytes_.reserve(64 + shape.Points().size() * 24 + shape.PathCount() * 16);
    }

    std::vector<unsigned char> Write() {
        switch (shape_.type) {
            case GeometryType::Point:
                WritePoint(shape_.IsEmpty() ? Coordinate{kNone, kNone, kNone} : shape_.Points()[0]);
                break;
            case GeometryType::Multipoint:
                Head(kMultiPoint, shape_.Points().size());
                for (const Coordinate& c : shape_.Points()) WritePoint(c);
                break;
            case GeometryType::Polyline:
                if (IsMulti(shape_.PathCount())) Head(kMultiLine, shape_.PathCount());
                for (std::size_t n = 0; n < shape_.PathCount(); ++n) WriteLine(n);
                if (!IsMulti(shape_.PathCount()) && shape_.IsEmpty()) Head(kLine, 0);
                break;
            case GeometryType::Polygon:
                if (IsMulti(shape_.AreaCount())) Head(kMultiPolygon, shape_.AreaCount());
                for (std::size_t n = 0; n < shape_.AreaCount(); ++n) WritePolygon(n);
                if (!IsMulti(shape_.AreaCount()) && shape_.IsEmpty()) Head(kPolygon, 0);
                break;
            default:
                throw RuntimeError(Fault::PropertyNotSupported, "WKB of a geometry of another kind");
        }
        return std::move(bytes_);
    }

  private:
    static constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

    bool IsMulti(std::size_t parts) const { return shape_.isMulti || parts > 1; }

    void WritePoint(const Coordinate& c) {
        Head(kPoint);
        Put(c);
    }

    void WriteLine(std::size_t path) {
        Head(kLine);
        WritePath(path);
    }

    void WritePolygon(std::size_t area) {
        Head(kPolygon, shape_.AreaEnd(area) - shape_.AreaBegin(area));
        for (std::size_t n = shape_.AreaBegin(area); n < shape_.AreaEnd(area); ++n) WritePath(n);
    }

    void WritePath(std::size_t n) {
        PutCount(shape_.PathAt(n).size());
        for (const Coordinate& c : shape_.PathAt(n)) Put(c);
    }

    void Head(std::uint32_t kind) {
        bytes_.push_back(1);
        Put(kind + (shape_.hasZ ? 1000 : 0));
    }
    void Head(std::uint32_t kind, std::size_t count) {
        Head(kind);
        PutCount(count);
    }
    void PutCount(std::size_t count) { Put(static_cast<std::uint32_t>(count)); }
    void Put(const Coordinate& c) {
        Put(std::bit_cast<std::uint64_t>(c.x));
        Put(std::bit_cast<std::uint64_t>(c.y));
        if (shape_.hasZ) Put(std::bit_cast<std::uint64_t>(c.z));
    }
    template <class Bits>
    void Put(Bits bits) {
        for (std::size_t n = 0; n < sizeof bits; ++n)
            bytes_.push_back(static_cast<unsigned char>((bits >> (8 * n)) & 0xffU));
    }

    const Shape& shape_;
    std::vector<unsigned char> bytes_;
};

}  // namespace

Shape ReadWkb(std::span<const unsigned char> bytes) {
    return Reader(bytes).Read();
}

std::vector<unsigned char> WriteWkb(const Shape& shape) {
    return Writer(shape).Write();
}

}  // namespace orvo::geos
