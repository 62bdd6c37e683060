#include "tiling/vector/LibraryWriter.h"

#include <ogr_feature.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include "platform/gdal/Attributes.h"
#include "platform/gdal/TileDataset.h"
#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

std::string Quoted(const std::string& name) {
    return "\"" + name + "\"";
}

std::string Listed(const std::set<std::string>& names) {
    constexpr std::size_t kMost = 10;
    std::string list;
    std::size_t count = 0;
    for (const std::string& name : names) {
        if (++count > kMost) return list + " and " + std::to_string(names.size() - kMost) + " more";
        list += (list.empty() ? "" : ", ") + Quoted(name);
    }
    return list;
}

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

/// Records are: the feature's id, the sizes of attributes and geometry, and these.
class LibraryWriter final : public PieceWriter {
  public:
    LibraryWriter(gdal::VectorFormat format, const gdal::VectorLayer& layer, const AddedFields& added) {
        schema_.format = std::move(format);
        schema_.fields = &layer.Definition();
        schema_.system = layer.SpatialReference();
        schema_.idField = added.id;
        schema_.tileField = added.tile;
        schema_.date = layer.Modified();  // the same source makes the same files
    }

    std::string Extension() const override { return schema_.format.extension; }
    bool WritesSideFiles() const override { return true; }

    void Begin(const OGRFeature& feature) override {
        attributes_ = gdal::WriteAttributes(feature);
        id_ = feature.GetFID();
        if (!sample_) sample_.reset(feature.Clone());
        KeepMostDemanding(feature);
    }

    void Expect(const geos::Geometry& whole, const std::vector<unsigned char>& wkb, bool isCut) override {
        const geos::Shape& shape = whole.Coordinates();
        if (shape.type == GeometryType::Other || shape.IsEmpty()) return;
        Note(shape, isCut);
        if (sampleShape_.empty() || wkb.size() < sampleShape_.size()) sampleShape_ = wkb;
    }

    const std::string& Record(const std::string&, const geos::Geometry& piece) override {
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

    void Prepare(const std::string& folder) override {
        if (sampleShape_.empty()) return;
        const auto changes = TryFormat(folder);
        for (int field = 0; field <= FieldCount(); ++field) {
            const bool isChanged = changes && changes->values.contains(field);
            if (SharesName(field) && (isChanged || !changes || changes->missing.contains(field))) {
                schema_.renamed[field] = OtherName(field);
            } else if (isChanged && (IsLong(field) || IsList(field))) {
                schema_.asText.insert(field);
                texts_.insert(NameOf(field));
            }
        }
    }

    void Write(const std::string& path, const std::string& tile, const RecordSource& records) override {
        gdal::TileDataset dataset(path, tile, schema_);
        records([&](std::string_view chunk) {
            while (!chunk.empty()) AddFirst(chunk, dataset);
        });
        dataset.Close();
        if (dataset.Changed().IsEmpty()) return;  // whatever the library warned of
        for (const auto& [sort, text] : dataset.Warned()) warnings_.try_emplace(sort, text);
        changes_.Add(dataset.Changed());
    }

    std::vector<std::string> Notices() const override {
        std::vector<std::string> notices;
        const std::string& format = schema_.format.name;
        for (const auto& [sort, text] : warnings_)
            notices.push_back(format + " does not hold all as it was, for example: " + Shortened(text));
        if (!texts_.empty())
            notices.push_back(format + " would change the values of " + Listed(texts_) +
                              ": they stand in the tiles as text");
        for (const auto& [what, names] : changes_.fields)
            notices.push_back(ReadBackNotice("fields " + what + ": " + Listed(names)));
        for (const std::string& what : changes_.others)
            notices.push_back(ReadBackNotice("the tiles " + what));
        return notices;
    }

    Json Findings() const override {
        return {{"warnings", warnings_},
                {"texts", texts_},
                {"fields", changes_.fields},
                {"others", changes_.others}};
    }

    void AddFindings(const Json& findings) override {
        for (const auto& [sort, text] : findings.at("warnings").get<gdal::Warnings>())
            warnings_.try_emplace(sort, text);
        texts_.merge(findings.at("texts").get<std::set<std::string>>());
        for (auto& [what, names] : findings.at("fields").get<decltype(changes_.fields)>())
            changes_.fields[what].merge(std::set(names));
        changes_.others.merge(findings.at("others").get<decltype(changes_.others)>());
    }

  private:
    struct Head {
        std::int64_t id;
        std::size_t attributes;
        std::size_t wkb;
    };

    /// A cut may part a line or an area.
    void Note(const geos::Shape& shape, bool isCut) {
        const bool single = shape.type == GeometryType::Point;
        schema_.points = schema_.points || single || shape.type == GeometryType::Multipoint;
        schema_.lines = schema_.lines || shape.type == GeometryType::Polyline;
        schema_.areas = schema_.areas || shape.type == GeometryType::Polygon;
        const std::size_t parts = shape.type == GeometryType::Polygon ? shape.AreaCount() : shape.PathCount();
        schema_.multi = schema_.multi || shape.isMulti || shape.type == GeometryType::Multipoint ||
                        (!single && (parts > 1 || isCut));
        schema_.heights = schema_.heights || shape.hasZ;
        area_.Include(shape.Extent());
        const geos::Bounds around = area_.GrownBy(1, 1);  // also where there is only one point
        schema_.area = {around.xMin, around.yMin, around.xMax, around.yMax};
    }

    std::string ReadBackNotice(const std::string& change) const {
        return "read back from " + schema_.format.name + ", " + change;
    }
    int FieldCount() const { return schema_.fields->GetFieldCount(); }
    /// Of the source's fields and, behind them, the id.
    std::string NameOf(int field) const {
        return field < FieldCount() ? schema_.fields->GetFieldDefn(field)->GetNameRef() : schema_.idField;
    }
    bool IsLong(int field) const {
        return field == FieldCount() || schema_.fields->GetFieldDefn(field)->GetType() == OFTInteger64;
    }
    bool IsList(int field) const {
        return gdal::KindOf(*schema_.fields->GetFieldDefn(field)) == gdal::ValueKind::List;
    }
    /// With an earlier field, but for the case.
    bool SharesName(int field) const {
        return field < FieldCount() && schema_.fields->GetFieldIndex(NameOf(field).c_str()) < field;
    }

    /// With a number behind it, unlike all others whatever the case.
    std::string OtherName(int field) const {
        std::string name;
        const auto isTaken = [&] {
            return schema_.fields->GetFieldIndex(name.c_str()) >= 0 ||
                   std::ranges::any_of(schema_.renamed, [&](const auto& other) {
                       return EQUAL(other.second.c_str(), name.c_str());
                   });
        };
        for (int number = 2; name.empty() || isTaken(); ++number)
            name = NameOf(field) + "_" + std::to_string(number);
        return name;
    }

    /// How much a number asks of a format: most where a double does not hold it, then by its size.
    static std::pair<bool, double> Demand(GIntBig number) {
        const auto rounded = static_cast<double>(number);
        constexpr double kLimit = 9223372036854775808.0;  // 2^63
        return {rounded >= kLimit || static_cast<GIntBig>(rounded) != number, std::abs(rounded)};
    }
    /// The sample gets each field's most demanding number, and the first list that holds something.
    void KeepMostDemanding(const OGRFeature& feature) {
        for (int i = 0; i < FieldCount(); ++i) {
            if (!feature.IsFieldSetAndNotNull(i)) continue;
            const bool isFirst = !sample_->IsFieldSetAndNotNull(i);
            if (IsLong(i)) {
                const GIntBig value = feature.GetFieldAsInteger64(i);
                if (isFirst || Demand(value) > Demand(sample_->GetFieldAsInteger64(i)))
                    sample_->SetField(i, value);
            } else if (isFirst && IsList(i)) {
                sample_->SetField(i, feature.GetRawFieldRef(i));
            }
        }
        if (Demand(feature.GetFID()) > Demand(sample_->GetFID())) sample_->SetFID(feature.GetFID());
    }

    /// What the format makes of the sample; nothing where it fails.
    std::optional<gdal::Changes> TryFormat(const std::string& folder) const {
        try {
            gdal::TileDataset trial(folder + "/trial." + schema_.format.extension, "trial", schema_);
            trial.Add(gdal::WriteAttributes(*sample_), sample_->GetFID(), sampleShape_);
            trial.Close();
            return trial.Changed();
        } catch (const std::exception&) {
            return std::nullopt;
        }
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
    geos::Bounds area_;  ///< of all geometries
    gdal::Warnings warnings_;
    std::int64_t id_ = 0;
    std::string attributes_;
    std::string record_;

    // A feature that tries the format before the first tile is written.
    std::unique_ptr<OGRFeature> sample_;
    std::vector<unsigned char> sampleShape_;

    std::set<std::string> texts_;  ///< names of the fields that stay as text
    gdal::Changes changes_;
};

}  // namespace

std::unique_ptr<PieceWriter> MakeLibraryWriter(gdal::VectorFormat format, const gdal::VectorLayer& layer,
                                               const AddedFields& added) {
    return std::make_unique<LibraryWriter>(std::move(format), layer, added);
}

}  // namespace orvo::tiling
