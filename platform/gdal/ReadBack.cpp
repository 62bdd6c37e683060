#include "platform/gdal/ReadBack.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cstring>

#include "platform/RuntimeError.h"
#include "platform/gdal/ErrorCapture.h"

namespace orvo::gdal {
namespace {

[[noreturn]] void Fail(const std::string& reason) {
    throw RuntimeError(static_cast<Long>(Fault::DeviceIOError),
                       reason + "; choose another --format, for example GPKG");
}

/// Where the fields stand in the file; −1 for those that do not.
std::vector<int> FindFields(const OGRFeatureDefn& there, const std::vector<WrittenField>& fields,
                            Changes& changes) {
    std::vector<int> places;
    for (const WrittenField& field : fields) {
        int place = there.GetFieldIndexCaseSensitive(field.written.c_str());
        if (place < 0) place = there.GetFieldIndex(field.written.c_str());
        const bool isShared = place >= 0 && std::ranges::find(places, place) != places.end();
        places.push_back(isShared ? -1 : place);
        if (places.back() < 0) {
            changes.missing.insert(static_cast<int>(places.size()) - 1);
            changes.fields["are missing"].insert(field.name);
            continue;
        }
        const OGRFieldDefn& found = *there.GetFieldDefn(place);
        if (field.name != found.GetNameRef()) changes.fields["have another name"].insert(field.name);
        const std::string kind = NameOf(KindOf(found));
        if (kind != NameOf(field.kind)) changes.fields["have become " + kind].insert(field.name);
    }
    return places;
}

void CompareSystems(const OGRSpatialReference* found, const OGRSpatialReference* expected, Changes& changes) {
    if (found == nullptr && expected == nullptr) return;
    const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", "CRITERION=EQUIVALENT",
                                   nullptr};
    if (found == nullptr)
        changes.others.insert("have no coordinate system");
    else if (expected == nullptr || found->IsSame(expected, options) == 0)
        changes.others.insert("have another coordinate system");
}

/// What the file's features come to, in the same fields.
WrittenContent ContentOf(OGRLayer& layer, const WrittenContent& expected, const std::vector<int>& places) {
    WrittenContent content{expected.fields};
    for (WrittenField& field : content.fields) field.values = {};
    for (const auto& feature : layer) {
        const OGRGeometry* const geometry = feature->GetGeometryRef();
        if (geometry == nullptr || geometry->IsEmpty() != 0) continue;
        ++content.features;
        content.vertices += VertexCount(geometry);
        for (std::size_t i = 0; i < places.size(); ++i) {
            WrittenField& field = content.fields[i];
            if (places[i] >= 0) field.values.Add(PlainValue(*feature, places[i], field.kind));
        }
    }
    return content;
}

}  // namespace

Changes ReadBack(const std::string& path, const std::string& format, const OGRSpatialReference* system,
                 const WrittenContent& content) {
    const ErrorCapture errors;
    const GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    OGRLayer* const layer = file ? file->GetLayer(0) : nullptr;
    if (layer == nullptr) Fail(format + " cannot be read back (" + errors.Reason("no driver takes it") + ")");
    Changes changes;
    const std::vector<int> places = FindFields(*layer->GetLayerDefn(), content.fields, changes);
    const WrittenContent found = ContentOf(*layer, content, places);
    if (found.features != content.features || errors.Failed())
        Fail(format + " gives " + std::to_string(found.features) + " of " + std::to_string(content.features) +
             " features back" + (errors.Failed() ? " (" + errors.Reason("") + ")" : ""));
    for (std::size_t i = 0; i < places.size(); ++i) {
        const WrittenField& field = content.fields[i];
        if (places[i] < 0 || found.fields[i].values == field.values) continue;
        changes.values.insert(static_cast<int>(i));
        changes.fields["have other values"].insert(field.name);
    }
    if (found.vertices != content.vertices) changes.others.insert("have other vertices");
    CompareSystems(layer->GetSpatialRef(), system, changes);
    return changes;
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

void Changes::Add(const Changes& more) {
    values.insert(more.values.begin(), more.values.end());
    missing.insert(more.missing.begin(), more.missing.end());
    for (const auto& [what, names] : more.fields) fields[what].insert(names.begin(), names.end());
    others.insert(more.others.begin(), more.others.end());
}

}  // namespace orvo::gdal
