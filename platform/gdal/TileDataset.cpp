#include "platform/gdal/TileDataset.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

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

/// Null leaves it to the user's own choice, or to the clock.
const char* DateOf(const TileSchema& schema) {
    const bool isChosen = CPLGetConfigOption("OGR_CURRENT_DATE", nullptr) != nullptr;
    return isChosen || schema.date.empty() ? nullptr : schema.date.c_str();
}

}  // namespace

TileDataset::TileDataset(const std::string& path, const std::string& name, const TileSchema& schema)
    : schema_(schema), date_("OGR_CURRENT_DATE", DateOf(schema)), path_(path), name_(name) {
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
        targets_.push_back(target);
        content_.fields.push_back({name, written, kind});
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
    content_.vertices += VertexCount(geometry);
    feature.SetGeometryDirectly(geometry);
    if (layer_->CreateFeature(&feature) != OGRERR_NONE)
        FailToWrite("a feature cannot be written: " + errors.Reason("no reason was given"));
    ++content_.features;
}

void TileDataset::SetFields(OGRFeature& feature, std::int64_t id) {
    std::vector<int> targets;
    const std::size_t count = targets_.size() - 2;
    for (std::size_t i = 0; i < count; ++i) {
        WrittenField& field = content_.fields[i];
        const int number = static_cast<int>(i);
        // The library cuts lists short where it makes texts of them.
        const bool isOurs = layer_->GetLayerDefn()->GetFieldDefn(targets_[i])->GetType() == OFTString &&
                            (field.kind == ValueKind::List || field.kind == ValueKind::Whole);
        targets.push_back(isOurs ? -1 : targets_[i]);
        if (isOurs && source_->IsFieldSetAndNotNull(number))
            feature.SetField(targets_[i], JsonValue(*source_, number).c_str());
        field.values.Add(PlainValue(*source_, number, field.kind));
    }
    feature.SetFieldsFrom(source_.get(), targets.data(), TRUE);
    feature.SetField(targets_[count], static_cast<GIntBig>(id));
    feature.SetField(targets_[count + 1], name_.c_str());
    content_.fields[count].values.Add(std::to_string(id));
    content_.fields[count + 1].values.Add(name_);
}

void TileDataset::Close() {
    const ErrorCapture errors(&warnings_);
    source_.reset();
    if (dataset_->TestCapability(ODsCTransactions) != 0) dataset_->CommitTransaction();
    dataset_->FlushCache(true);
    dataset_.reset();
    for (auto& [sort, text] : warnings_) text = files_.WithPaths(text);
    if (!files_.Failure().empty()) FailToWrite(files_.Failure());
    if (errors.Failed()) FailToWrite(errors.Reason(""));
    changes_ = ReadBack(path_, schema_.format.name, schema_.system, content_);
}

}  // namespace orvo::gdal
