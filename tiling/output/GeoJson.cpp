#include "tiling/output/GeoJson.h"

#include <ogr_feature.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include "platform/gdal/Attributes.h"
#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

using geos::Coordinate;
using geos::Shape;

void Append(std::string& text, const Coordinate& c, bool hasZ) {
    text += '[';
    gdal::AppendJson(text, c.x);
    text += ',';
    gdal::AppendJson(text, c.y);
    if (hasZ && std::isfinite(c.z)) {
        text += ',';
        gdal::AppendJson(text, c.z);
    }
    text += ']';
}

void Append(std::string& text, Shape::Path path, bool hasZ) {
    text += '[';
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (i > 0) text += ',';
        Append(text, path[i], hasZ);
    }
    text += ']';
}

template <class Part>
void AppendEach(std::string& text, std::size_t begin, std::size_t end, const Part& part) {
    text += '[';
    for (std::size_t n = begin; n < end; ++n) {
        if (n > begin) text += ',';
        part(n);
    }
    text += ']';
}

void AppendArea(std::string& text, const Shape& shape, std::size_t area) {
    AppendEach(text, shape.AreaBegin(area), shape.AreaEnd(area),
               [&](std::size_t n) { Append(text, shape.PathAt(n), shape.hasZ); });
}

/// The only part alone, or all of them as a list.
template <class Part>
void AppendParts(std::string& text, const char* kind, std::size_t count, bool isMulti, const Part& part) {
    const bool several = isMulti || count != 1;
    text += std::string(R"({"type":")") + (several ? "Multi" : "") + kind + R"(","coordinates":)";
    if (several)
        AppendEach(text, 0, count, part);
    else
        part(0);
    text += '}';
}

class Output {
  public:
    explicit Output(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wbe")) {
        if (!file_) Fail();
    }
    void Write(std::string_view text) {
        if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size()) Fail();
    }
    void Close() {
        if (std::fclose(file_.release()) != 0) Fail();
    }

  private:
    struct Closer {
        void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
    };
    [[noreturn]] void Fail() const {
        throw RunError("cannot write \"" + path_ + "\": " + std::strerror(errno));
    }
    std::string path_;
    std::unique_ptr<std::FILE, Closer> file_;
};

}  // namespace

std::string FeatureHead(const OGRFeature& feature, const std::string& idField) {
    std::string head = ",\n{\"type\":\"Feature\",\"properties\":{" + gdal::JsonMembers(feature);
    if (feature.GetFieldCount() > 0) head += ',';
    return head + gdal::JsonText(idField) + ':' + std::to_string(feature.GetFID()) + ',';
}

void AppendGeometry(std::string& text, const Shape& shape) {
    const auto points = shape.Points();
    switch (shape.type) {
        case GeometryType::Point:
        case GeometryType::Multipoint:
            return AppendParts(text, "Point", points.size(), shape.type == GeometryType::Multipoint,
                               [&](std::size_t n) { Append(text, points[n], shape.hasZ); });
        case GeometryType::Polyline:
            return AppendParts(text, "LineString", shape.PathCount(), shape.isMulti,
                               [&](std::size_t n) { Append(text, shape.PathAt(n), shape.hasZ); });
        case GeometryType::Polygon:
            return AppendParts(text, "Polygon", shape.AreaCount(), shape.isMulti,
                               [&](std::size_t n) { AppendArea(text, shape, n); });
        default:
            text += "null";
    }
}

void WriteFeatures(const std::string& path, const std::string& name, const std::string& system,
                   const RecordSource& records) {
    Output output(path);
    output.Write(R"({"type":"FeatureCollection","name":)" + gdal::JsonText(name) +
                 R"(,"crs":{"type":"name","properties":{"name":)" + gdal::JsonText(system) +
                 "}},\n\"features\":[");
    bool first = true;
    records([&](std::string_view chunk) {
        output.Write(chunk.substr(first ? 1 : 0));
        first = false;
    });
    output.Write("\n]}\n");
    output.Close();
}

}  // namespace orvo::tiling
