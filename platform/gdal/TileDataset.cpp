#include "platform/gdal/TileDataset.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "platform/RuntimeError.h"
#include "platform/gdal/Attributes.h"
#include "platform/gdal/ScopedOption.h"
#include "platform/gdal/Startup.h"

namespace orvo::gdal {
namespace {

[[noreturn]] void Fail(const std::string& text) {
    throw RuntimeError(static_cast<Long>(Fault::AutomationError), text);
}

std::string Metadata(GDALDriver& driver, const char* item) {
    const char* const value = driver.GetMetadataItem(item);
    return value == nullptr ? "" : value;
}

/// The first one; empty where the format is no file, or a folder.
std::string ExtensionOf(GDALDriver& driver) {
    const CPLStringList extensions(CSLTokenizeString(Metadata(driver, GDAL_DMD_EXTENSIONS).c_str()));
    if (extensions.empty() || EQUAL(extensions[0], "gdb")) return "";
    return extensions[0];
}

bool Writes(GDALDriver& driver) {
    return Metadata(driver, GDAL_DCAP_VECTOR) == "YES" && Metadata(driver, GDAL_DCAP_CREATE) == "YES" &&
           !ExtensionOf(driver).empty();
}

/// The extension that a name or an extension stands for; empty where it is none of the driver's.
std::string ExtensionFor(GDALDriver& driver, const std::string& text) {
    if (EQUAL(driver.GetDescription(), text.c_str())) return ExtensionOf(driver);
    const CPLStringList extensions(CSLTokenizeString(Metadata(driver, GDAL_DMD_EXTENSIONS).c_str()));
    const int found = extensions.FindString(text.c_str());
    if (found < 0) return "";
    // A table alone holds no geometries: its driver writes all files of the shapefile.
    return EQUAL(extensions[found], "dbf") ? ExtensionOf(driver) : extensions[found];
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

void Adapt(OGRFieldDefn& field, const std::string& types) {
    const OGRFieldType type = Held(field.GetType(), types);
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

}  // namespace

VectorFormat FindVectorFormat(const std::string& text) {
    Start();
    GDALDriverManager& manager = *GetGDALDriverManager();
    std::string names;
    for (int i = 0; i < manager.GetDriverCount(); ++i) {
        GDALDriver& driver = *manager.GetDriver(i);
        if (!Writes(driver)) continue;
        const std::string name = driver.GetDescription();
        const std::string extension = ExtensionFor(driver, text);
        if (!extension.empty()) return {name, extension, name != "ESRI Shapefile"};
        names += (names.empty() ? "" : ", ") + name;
    }
    Fail("\"" + text + "\" is no vector format that can be written; choose one of " + names);
}

TileDataset::TileDataset(const std::string& path, const std::string& name, const TileSchema& schema)
    : schema_(schema), path_(path), name_(name) {
    const ErrorCapture errors(&warnings_);
    // A tile that is not complete is thrown away, so nothing has to survive a crash.
    const ScopedOption quick("OGR_SQLITE_SYNCHRONOUS", "OFF");
    GDALDriver& driver = *GetGDALDriverManager()->GetDriverByName(schema.format.name.c_str());
    dataset_.reset(driver.Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!dataset_) Fail(path + " cannot be created: " + errors.Reason("no reason was given"));
    CPLStringList options = LayerOptions(schema);
    layer_ = dataset_->CreateLayer(name.c_str(), schema.system, TypeOf(schema), options.List());
    if (layer_ == nullptr) Fail(path + " cannot be created: " + errors.Reason("no reason was given"));
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

void TileDataset::CreateFields() {
    const ErrorCapture errors(&warnings_);
    const std::string types = Metadata(*dataset_->GetDriver(), GDAL_DMD_CREATIONFIELDDATATYPES);
    const auto create = [&](OGRFieldDefn&& field) {
        Adapt(field, types);
        const int count = layer_->GetLayerDefn()->GetFieldCount();
        if (layer_->CreateField(&field) == OGRERR_NONE && layer_->GetLayerDefn()->GetFieldCount() > count)
            return count;
        // Some formats bring their own fields.
        const int there = layer_->GetLayerDefn()->GetFieldIndex(field.GetNameRef());
        if (there >= 0) return there;
        Fail(schema_.format.name + " cannot hold the field \"" + field.GetNameRef() + "\" (" +
             errors.Reason("no reason was given") + "); choose another --format");
    };
    for (int i = 0; i < schema_.fields->GetFieldCount(); ++i)
        targets_.push_back(create(OGRFieldDefn(schema_.fields->GetFieldDefn(i))));
    idTarget_ = create(OGRFieldDefn(schema_.idField.c_str(), OFTInteger64));
    tileTarget_ = create(OGRFieldDefn(schema_.tileField.c_str(), OFTString));
}

void TileDataset::Add(std::string_view attributes, std::int64_t id, std::span<const unsigned char> wkb) {
    const ErrorCapture errors(&warnings_);
    source_->Reset();
    ReadAttributes(attributes, *source_);
    OGRFeature feature(layer_->GetLayerDefn());
    feature.SetFieldsFrom(source_.get(), targets_.data(), TRUE);
    feature.SetField(idTarget_, static_cast<GIntBig>(id));
    feature.SetField(tileTarget_, name_.c_str());
    OGRGeometry* geometry = nullptr;
    if (OGRGeometryFactory::createFromWkb(wkb.data(), nullptr, &geometry, wkb.size(), wkbVariantIso) !=
        OGRERR_NONE)
        Fail("a geometry cannot be read back");
    const OGRwkbGeometryType type = TypeOf(schema_);
    if (wkbFlatten(type) != wkbUnknown) geometry = OGRGeometryFactory::forceTo(geometry, type);
    feature.SetGeometryDirectly(geometry);
    if (layer_->CreateFeature(&feature) != OGRERR_NONE)
        Fail("a feature cannot be written: " + errors.Reason("no reason was given"));
    ++added_;
}

void TileDataset::Close() {
    const ErrorCapture errors(&warnings_);
    source_.reset();
    if (dataset_->TestCapability(ODsCTransactions) != 0) dataset_->CommitTransaction();
    dataset_->FlushCache(true);
    dataset_.reset();
    if (errors.Failed()) throw RuntimeError(static_cast<Long>(Fault::DeviceIOError), errors.Reason(""));
    const GDALDatasetUniquePtr written(GDALDataset::Open(path_.c_str(), GDAL_OF_VECTOR));
    OGRLayer* const layer = written ? written->GetLayer(0) : nullptr;
    if (layer == nullptr || layer->GetFeatureCount(TRUE) != added_) {
        throw RuntimeError(static_cast<Long>(Fault::DeviceIOError),
                           "not all features got into the file: " + errors.Reason("it reads back shorter"));
    }
}

}  // namespace orvo::gdal
