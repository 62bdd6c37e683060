#include "tiling/vector/PieceWriter.h"

#include <ogr_feature.h>

#include <cstring>

#include "platform/RuntimeError.h"
#include "platform/gdal/Attributes.h"
#include "platform/gdal/TileDataset.h"
#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

/// Without the middle of a long one.
std::string Shortened(const std::string& text) {
    constexpr std::size_t kHead = 80, kTail = 120;
    if (text.size() <= kHead + kTail + 5) return text;
    const auto whole = [&](std::size_t at) {
        while ((static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) --at;
        return at;
    };
    return text.substr(0, whole(kHead)) + " ... " + text.substr(whole(text.size() - kTail));
}

/// The library's writer takes 20 times as long and gives the same.
class GeoJsonWriter final : public PieceWriter {
  public:
    GeoJsonWriter(const AddedFields& added, std::string system)
        : idField_(added.id), tileKey_(gdal::JsonText(added.tile)), system_(std::move(system)) {}

    std::string Extension() const override { return "geojson"; }
    bool WritesSideFiles() const override { return false; }

    void Begin(const OGRFeature& feature) override {
        head_ = FeatureHead(feature, idField_) + tileKey_ + ':';
    }

    const std::string& Record(const std::string& tile, const geos::Geometry& piece) override {
        record_ = head_;
        record_ += gdal::JsonText(tile);
        record_ += "},\"geometry\":";
        AppendGeometry(record_, piece.Coordinates());
        record_ += '}';
        return record_;
    }

    void Write(const std::string& path, const std::string& tile, const RecordSource& records) override {
        WriteFeatures(path, tile, system_, records);
    }

  private:
    std::string idField_, tileKey_, system_;
    std::string head_;  ///< of the current feature's records
    std::string record_;
};

/// Records are: the feature's id, the sizes of attributes and geometry, and these.
class LibraryWriter final : public PieceWriter {
  public:
    LibraryWriter(gdal::VectorFormat format, const gdal::VectorLayer& layer, const AddedFields& added) {
        schema_.format = std::move(format);
        schema_.fields = &layer.Definition();
        schema_.system = layer.SpatialReference();
        schema_.idField = added.id;
        schema_.tileField = added.tile;
    }

    std::string Extension() const override { return schema_.format.extension; }
    bool WritesSideFiles() const override { return true; }

    void Begin(const OGRFeature& feature) override {
        attributes_ = gdal::WriteAttributes(feature);
        id_ = feature.GetFID();
    }

    const std::string& Record(const std::string&, const geos::Geometry& piece) override {
        const geos::Shape& shape = piece.Coordinates();
        Note(shape);
        const auto wkb = piece.ToWkb();
        const Head head{id_, attributes_.size(), wkb.size()};
        record_.assign(reinterpret_cast<const char*>(&head), sizeof head);
        record_ += attributes_;
        record_.append(reinterpret_cast<const char*>(wkb.data()), wkb.size());
        return record_;
    }

    void CheckRecords() const override {
        if (schema_.format.mixesKinds || int{schema_.points} + int{schema_.lines} + int{schema_.areas} < 2)
            return;
        throw RunError(schema_.format.name +
                       " holds one kind of geometry in a file, and the layer mixes points, lines or areas; "
                       "choose another --format, for example GPKG");
    }

    void Write(const std::string& path, const std::string& tile, const RecordSource& records) override {
        gdal::TileDataset dataset(path, tile, schema_);
        records([&](std::string_view chunk) {
            while (!chunk.empty()) AddFirst(chunk, dataset);
        });
        dataset.Close();
        for (const auto& [sort, text] : dataset.Warnings()) warnings_.try_emplace(sort, text);
    }

    std::vector<std::string> Notices() const override {
        std::vector<std::string> notices;
        for (const auto& [sort, text] : warnings_)
            notices.push_back(schema_.format.name +
                              " does not hold all as it was, for example: " + Shortened(text));
        return notices;
    }

  private:
    struct Head {
        std::int64_t id;
        std::size_t attributes;
        std::size_t wkb;
    };

    void Note(const geos::Shape& shape) {
        const bool single = shape.type == GeometryType::Point;
        schema_.points = schema_.points || single || shape.type == GeometryType::Multipoint;
        schema_.lines = schema_.lines || shape.type == GeometryType::Polyline;
        schema_.areas = schema_.areas || shape.type == GeometryType::Polygon;
        const std::size_t parts = shape.type == GeometryType::Polygon ? shape.AreaCount() : shape.PathCount();
        schema_.multi = schema_.multi || shape.isMulti || shape.type == GeometryType::Multipoint ||
                        (!single && parts > 1);
        schema_.heights = schema_.heights || shape.hasZ;
        area_.Include(shape.Extent());
        const geos::Bounds around = area_.GrownBy(1, 1);  // also where there is only one point
        schema_.area = {around.xMin, around.yMin, around.xMax, around.yMax};
    }

    static void AddFirst(std::string_view& chunk, gdal::TileDataset& dataset) {
        Head head{};
        std::memcpy(&head, chunk.data(), sizeof head);
        const auto attributes = chunk.substr(sizeof head, head.attributes);
        const auto wkb = chunk.substr(sizeof head + head.attributes, head.wkb);
        dataset.Add(attributes, head.id, {reinterpret_cast<const unsigned char*>(wkb.data()), wkb.size()});
        chunk.remove_prefix(sizeof head + head.attributes + head.wkb);
    }

    gdal::TileSchema schema_;
    geos::Bounds area_;  ///< of all pieces
    gdal::Warnings warnings_;
    std::int64_t id_ = 0;
    std::string attributes_;
    std::string record_;
};

gdal::VectorFormat Find(const std::string& format) {
    try {
        return gdal::FindVectorFormat(format);
    } catch (const RuntimeError& error) {
        throw UsageError("--format " + error.Description());
    }
}

}  // namespace

std::unique_ptr<PieceWriter> MakePieceWriter(const std::string& format, const gdal::VectorLayer& layer,
                                             const AddedFields& added, const std::string& system) {
    gdal::VectorFormat found = Find(format);
    if (found.name == "GeoJSON") return std::make_unique<GeoJsonWriter>(added, system);
    return std::make_unique<LibraryWriter>(std::move(found), layer, added);
}

}  // namespace orvo::tiling
