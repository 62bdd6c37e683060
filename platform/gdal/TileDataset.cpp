#include "platform/gdal/TileDataset.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cstring>

#include "platform/RuntimeError.h"
#include "platform/gdal/Attributes.h"
#include "platform/gdal/ScopedOption.h"

namespace orvo::gdal {
namespace {

[[noreturn]] void Fail(const std::string& text) {
    throw RuntimeError(static_cast<Long>(Fault::AutomationError), text);
}

std::string Metadata(GDALDriver& driver, const char* item) {
    const char* const value = driver.GetMetadataItem(item);
    return value == nullptr ? "" : value;
}

OGRwkbGeometryType TypeOf(const TileSchema& schema) {
    const int kinds = int{schema.points} + int{schema.lines} + int{schema.areas};
    OGRwkbGeometryType type = wkbUnknown;
    if (kinds == 1) {
        type = schema.points ? wkbPoint : schema.lines ? wkbLineString : wkbPolygon;
        if (schema.multi) type = OGR_GT_GetCollection(type);
    }
    return schema.heights ? OGR_GT_SetZ(type) : type;
}

CPLStringList LayerOptions(const TileSchema& schema) {
    const std::string& format = schema.format.name;
    CPLStringList options;
    if (format == "CSV") options.SetNameValue("GEOMETRY", "AS_WKT");
    if (format == "ESRI Shapefile") options.SetNameValue("ENCODING", "UTF-8");
    // Its coordinates are whole steps of these bounds; those of the whole world take 1 cm or more each.
    if (format == "MapInfo File") {
        const auto& [xMin, yMin, xMax, yMax] = schema.area;
        options.SetNameValue("BOUNDS", CPLSPrintf("%.17g,%.17g,%.17g,%.17g", xMin, yMin, xMax, yMax));
    }
    return options;
}

/// The type that the format has for the field: a long number may become a real one, and whatever the format
/// does not know becomes text.
OGRFieldType Held(OGRFieldType type, const std::string& types) {
    const auto knows = [&](OGRFieldType one) {
        return types.empty() ||
               (" " + types + " ").find(std::string(" ") + OGRFieldDefn::GetFieldTypeName(one) + " ") !=
                   std::string::npos;
    };
    if (knows(type)) return type;
    return type == OFTInteger64 && knows(OFTReal) ? OFTReal : OFTString;
}

void Adapt(OGRFieldDefn& field, const std::string& types, bool isText) {
    const OGRFieldType type = isText ? OFTString : Held(field.GetType(), types);
    if (type != field.GetType()) {
        field.SetSubType(OFSTNone);
        field.SetType(type);
        field.SetWidth(0);
    }
    // The digits that one format provides for a number may be too many for another.
    if (type == OFTReal) field.SetWidth(0);
    field.SetPrecision(0);
    // A tile holds what the source holds, also where that breaks the source's own rules.
    field.SetDefault(nullptr);
    field.SetNullable(TRUE);
    field.SetUnique(FALSE);
}

/// Whether the format's own library writes the files, and sees whatever fails; it needs their true names.
bool ChecksItsWrites(const std::string& format) {
    return format == "GPKG" || format == "SQLite" || format == "MBTiles" || format == "netCDF" ||
           format == "FITS";
}

std::int64_t VertexCount(const OGRGeometry* geometry) {
    struct Counter : OGRDefaultConstGeometryVisitor {
        using OGRDefaultConstGeometryVisitor::visit;
        void visit(const OGRPoint*) override { ++count; }
        std::int64_t count = 0;
    } counter;
    if (geometry != nullptr) geometry->accept(&counter);
    return counter.count;
}

}  // namespace

TileDataset::TileDataset(const std::string& path, const std::string& name, const TileSchema& schema)
    : schema_(schema), path_(path), name_(name) {
    const ErrorCapture errors(&warnings_);
    // A tile that is not complete is thrown away, so nothing has to survive a crash.
    const ScopedOption quick("OGR_SQLITE_SYNCHRONOUS", "OFF");
    GDALDriver& driver = *GetGDALDriverManager()->GetDriverByName(schema.format.name.c_str());
    const std::string target = ChecksItsWrites(schema.format.name) ? path : files_.NameOf(path);
    dataset_.reset(driver.Create(target.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!dataset_) FailToCreate(errors);
    CPLStringList options = LayerOptions(schema);
    layer_ = dataset_->CreateLayer(name.c_str(), schema.system, TypeOf(schema), options.List());
    if (layer_ == nullptr) FailToCreate(errors);
    if (layer_->GetGeomType() == wkbNone)
        Fail(schema.format.name + " holds no geometries; choose another --format");
    CreateFields();
    source_ = std::make_unique<OGRFeature>(schema.fields);
    if (dataset_->TestCapability(ODsCTransactions) != 0) dataset_->StartTransaction();
}

TileDataset::~TileDataset() {
    const ErrorCapture ignored;
    source_.reset();
    dataset_.reset();
}

void TileDataset::FailToCreate(const ErrorCapture& errors) const {
    const std::string reason = files_.Failure();
    Fail(path_ + " cannot be created: " +
         (reason.empty() ? files_.WithPaths(errors.Reason("no reason was given")) : reason));
}

void TileDataset::FailToWrite(const std::string& reason) const {
    throw RuntimeError(static_cast<Long>(Fault::DeviceIOError), files_.WithPaths(reason));
}

void TileDataset::CreateFields() {
    const std::string types = Metadata(*dataset_->GetDriver(), GDAL_DMD_CREATIONFIELDDATATYPES);
    std::set<int> taken;
    const auto create = [&](OGRFieldDefn&& field, const std::string& name, bool isText) {
        const ValueKind kind = KindOf(field);
        Adapt(field, types, isText);
        const int target = CreateField(field, taken);
        taken.insert(target);
        const std::string written = layer_->GetLayerDefn()->GetFieldDefn(target)->GetNameRef();
        fields_.push_back({name, kind, target, written});
    };
    for (int i = 0; i < schema_.fields->GetFieldCount(); ++i) {
        OGRFieldDefn field(schema_.fields->GetFieldDefn(i));
        const std::string name = field.GetNameRef();
        if (const auto other = schema_.renamed.find(i); other != schema_.renamed.end())
            field.SetName(other->second.c_str());
        create(std::move(field), name, schema_.asText.contains(i));
    }
    create(OGRFieldDefn(schema_.idField.c_str(), OFTInteger64), schema_.idField,
           schema_.asText.contains(schema_.fields->GetFieldCount()));
    create(OGRFieldDefn(schema_.tileField.c_str(), OFTString), schema_.tileField, false);
}

/// @return its number in the file
int TileDataset::CreateField(OGRFieldDefn& field, const std::set<int>& taken) {
    const ErrorCapture errors(&warnings_);
    OGRFeatureDefn& there = *layer_->GetLayerDefn();
    const auto create = [&] {
        const int count = there.GetFieldCount();
        const bool made = layer_->CreateField(&field) == OGRERR_NONE && there.GetFieldCount() > count;
        return made ? count : there.GetFieldIndex(field.GetNameRef());
    };
    int made = create();  // some formats bring a field of that name
    if (taken.contains(made)) {
        field.SetName(FreeFieldName(there, field.GetNameRef()).c_str());
        made = create();
    }
    if (made < 0 || taken.contains(made))
        Fail(schema_.format.name + " cannot hold the field \"" + field.GetNameRef() + "\" (" +
             errors.Reason("no reason was given") + "); choose another --format");
    return made;
}

void TileDataset::Add(std::string_view attributes, std::int64_t id, std::span<const unsigned char> wkb) {
    const ErrorCapture errors(&warnings_);
    source_->Reset();
    ReadAttributes(attributes, *source_);
    OGRFeature feature(layer_->GetLayerDefn());
    SetFields(feature, id);
    OGRGeometry* geometry = nullptr;
    if (OGRGeometryFactory::createFromWkb(wkb.data(), nullptr, &geometry, wkb.size(), wkbVariantIso) !=
        OGRERR_NONE)
        Fail("a geometry cannot be read back");
    const OGRwkbGeometryType type = TypeOf(schema_);
    if (wkbFlatten(type) != wkbUnknown) geometry = OGRGeometryFactory::forceTo(geometry, type);
    vertices_ += VertexCount(geometry);
    feature.SetGeometryDirectly(geometry);
    if (layer_->CreateFeature(&feature) != OGRERR_NONE)
        FailToWrite("a feature cannot be written: " + errors.Reason("no reason was given"));
    ++added_;
}

void TileDataset::SetFields(OGRFeature& feature, std::int64_t id) {
    std::vector<int> targets;
    const std::size_t count = fields_.size() - 2;
    for (std::size_t i = 0; i < count; ++i) {
        Field& field = fields_[i];
        const int number = static_cast<int>(i);
        // The library cuts lists short where it makes texts of them.
        const bool isOurs = layer_->GetLayerDefn()->GetFieldDefn(field.target)->GetType() == OFTString &&
                            (field.kind == ValueKind::List || field.kind == ValueKind::Whole);
        targets.push_back(isOurs ? -1 : field.target);
        if (isOurs && source_->IsFieldSetAndNotNull(number))
            feature.SetField(field.target, JsonValue(*source_, number).c_str());
        field.values.Add(PlainValue(*source_, number, field.kind));
    }
    feature.SetFieldsFrom(source_.get(), targets.data(), TRUE);
    feature.SetField(fields_[count].target, static_cast<GIntBig>(id));
    feature.SetField(fields_[count + 1].target, name_.c_str());
    fields_[count].values.Add(std::to_string(id));
    fields_[count + 1].values.Add(name_);
}

void TileDataset::Close() {
    const ErrorCapture errors(&warnings_);
    source_.reset();
    if (dataset_->TestCapability(ODsCTransactions) != 0) dataset_->CommitTransaction();
    dataset_->FlushCache(true);
    dataset_.reset();
    if (!files_.Failure().empty()) FailToWrite(files_.Failure());
    if (errors.Failed()) FailToWrite(errors.Reason(""));
    ReadBack();
}

/// Feature by feature: a count in a header says nothing of what stands behind it.
void TileDataset::ReadBack() {
    const ErrorCapture errors;
    const GDALDatasetUniquePtr written(GDALDataset::Open(path_.c_str(), GDAL_OF_VECTOR));
    OGRLayer* const layer = written ? written->GetLayer(0) : nullptr;
    if (layer == nullptr)
        FailToWrite(schema_.format.name + " cannot be read back (" + errors.Reason("no driver takes it") +
                    "); choose another --format, for example GPKG");
    const std::vector<int> places = FindFields(*layer->GetLayerDefn());
    std::vector<ValueSum> sums(fields_.size());
    std::int64_t count = 0, vertices = 0;
    for (const auto& feature : layer) {
        const OGRGeometry* const geometry = feature->GetGeometryRef();
        if (geometry == nullptr || geometry->IsEmpty() != 0) continue;
        ++count;
        vertices += VertexCount(geometry);
        for (std::size_t i = 0; i < fields_.size(); ++i)
            if (places[i] >= 0) sums[i].Add(PlainValue(*feature, places[i], fields_[i].kind));
    }
    if (count != added_ || errors.Failed())
        FailToWrite(schema_.format.name + " gives " + std::to_string(count) + " of " +
                    std::to_string(added_) + " features back" +
                    (errors.Failed() ? " (" + errors.Reason("") + ")" : "") +
                    "; choose another --format, for example GPKG");
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (places[i] < 0 || sums[i] == fields_[i].values) continue;
        changes_.values.insert(static_cast<int>(i));
        changes_.fields["have other values"].insert(fields_[i].name);
    }
    if (vertices != vertices_) changes_.others.insert("have other vertices");
    CompareSystem(*layer);
}

/// Where the fields stand in the file that is read back; −1 for those that do not.
std::vector<int> TileDataset::FindFields(OGRFeatureDefn& fields) {
    std::vector<int> places;
    for (const Field& field : fields_) {
        int place = fields.GetFieldIndexCaseSensitive(field.written.c_str());
        if (place < 0) place = fields.GetFieldIndex(field.written.c_str());
        const bool isShared = place >= 0 && std::ranges::find(places, place) != places.end();
        places.push_back(isShared ? -1 : place);
        if (places.back() < 0) {
            changes_.missing.insert(static_cast<int>(places.size()) - 1);
            changes_.fields["are missing"].insert(field.name);
            continue;
        }
        if (field.name != fields.GetFieldDefn(place)->GetNameRef())
            changes_.fields["have another name"].insert(field.name);
        const ValueKind kind = KindOf(*fields.GetFieldDefn(place));
        if (kind != field.kind)
            changes_.fields[std::string("have become ") + NameOf(kind)].insert(field.name);
    }
    return places;
}

void TileDataset::CompareSystem(OGRLayer& layer) {
    const OGRSpatialReference* const found = layer.GetSpatialRef();
    if (found == nullptr || schema_.system == nullptr) {
        if (found != schema_.system)
            changes_.others.insert(found == nullptr ? "have no coordinate system"
                                                    : "have another coordinate system");
        return;
    }
    const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", "CRITERION=EQUIVALENT",
                                   nullptr};
    if (found->IsSame(schema_.system, options) == 0) changes_.others.insert("have another coordinate system");
}

void Changes::Add(const Changes& more) {
    values.insert(more.values.begin(), more.values.end());
    missing.insert(more.missing.begin(), more.missing.end());
    for (const auto& [what, names] : more.fields) fields[what].insert(names.begin(), names.end());
    others.insert(more.others.begin(), more.others.end());
}

}  // namespace orvo::gdal
