#include "platform/gdal/VectorLayer.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <filesystem>

#include "platform/Platform.h"
#include "platform/gdal/Attributes.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/SourceFiles.h"
#include "platform/gdal/Startup.h"

namespace orvo::gdal {
namespace {

constexpr int kLayersToName = 20;

[[noreturn]] void Refuse(const std::string& source, const std::string& why) {
    throw RuntimeError(static_cast<Long>(Fault::AutomationError), source + " " + why);
}

bool IsOnDisk(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

bool IsRaster(const std::string& source) {
    const ErrorCapture ignored;
    return GDALDatasetUniquePtr(GDALDataset::Open(source.c_str(), GDAL_OF_RASTER)) != nullptr;
}

std::unique_ptr<GDALDataset> Open(const std::string& source) {
    if (!IsOnDisk(source) && source.find_first_of(":<") == std::string::npos && !source.starts_with("/vsi")) {
        throw RuntimeError(static_cast<Long>(Fault::FileNotFound),
                           "File not found: " + source + ". Check the path and the spelling.");
    }
    const ErrorCapture errors;
    std::unique_ptr<GDALDataset> dataset(
        GDALDataset::Open(source.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
    if (dataset && dataset->GetLayerCount() > 0) return dataset;
    if (IsRaster(source)) Refuse(source, "holds an image, no features. Cut it with 'orvo-tile raster'.");
    if (dataset) Refuse(source, "holds no vector layers. 'ogrinfo' shows what is in it.");
    Refuse(source, "cannot be opened as a vector layer (" + errors.Reason("no driver takes it") +
                       "). Check that it is complete, and in a format that 'ogrinfo --formats' lists.");
}

std::string LayerNames(GDALDataset& dataset) {
    std::string names;
    const int count = dataset.GetLayerCount();
    for (int i = 0; i < count && i < kLayersToName; ++i)
        names += (i == 0 ? "" : ", ") + std::string(dataset.GetLayer(i)->GetName());
    return count > kLayersToName ? names + ", and " + std::to_string(count - kLayersToName) + " more" : names;
}

[[noreturn]] void RefuseChoice(const std::string& source, const std::string& why) {
    throw RuntimeError(static_cast<Long>(Fault::InvalidProcedureCall), source + " " + why);
}

OGRLayer& Choose(GDALDataset& dataset, const std::string& source, const std::string& name) {
    if (name.empty()) {
        if (dataset.GetLayerCount() == 1) return *dataset.GetLayer(0);
        RefuseChoice(source,
                     "holds several layers. Choose one with --layer NAME: " + LayerNames(dataset) + ".");
    }
    const ErrorCapture ignored;
    OGRLayer* const layer = dataset.GetLayerByName(name.c_str());
    if (layer == nullptr)
        RefuseChoice(source, "holds no layer \"" + name + "\". It holds: " + LayerNames(dataset) + ".");
    return *layer;
}

bool IsFinite(const OGREnvelope& extent) {
    return extent.IsInit() != 0 && std::isfinite(extent.MaxX - extent.MinX) &&
           std::isfinite(extent.MaxY - extent.MinY);
}

/// What is known of a layer before its features are read.
struct Overview {
    OGREnvelope extent;
    std::int64_t count = 0;
};

/// From all features; the extent of those whose coordinates are numbers.
Overview Survey(OGRLayer& layer) {
    Overview all;
    layer.ResetReading();
    for (const auto& feature : layer) {
        ++all.count;
        const OGRGeometry* const geometry = feature->GetGeometryRef();
        OGREnvelope one;
        if (geometry != nullptr && geometry->IsEmpty() == 0) geometry->getEnvelope(&one);
        if (IsFinite(one)) all.extent.Merge(one);
    }
    return all;
}

/// Asked of the source itself, which may keep it in its header.
Overview Look(OGRLayer& layer, const std::string& source, const std::string& name) {
    const ErrorCapture errors;
    if (layer.GetGeomType() == wkbNone)
        Refuse(source, "has no geometries in its layer \"" + name + "\". Choose a layer that has some.");
    Overview stated;
    const bool isKnown = layer.TestCapability(OLCFastGetExtent) != 0 &&
                         layer.GetExtent(&stated.extent, FALSE) == OGRERR_NONE && IsFinite(stated.extent);
    if (isKnown)
        stated.count = layer.GetFeatureCount(TRUE);
    else
        stated = Survey(layer);
    if (IsFinite(stated.extent)) return stated;
    if (stated.count == 0) Refuse(source, "has no features in its layer \"" + name + "\".");
    Refuse(source, "has no extent in its layer \"" + name + "\": no feature there has a geometry" +
                       (errors.Failed() ? " (" + errors.Reason("") + ")." : "."));
}

}  // namespace

VectorLayer::VectorLayer(const std::string& source, const std::string& layer)
    : source_(source), dataset_(Open(source)), layer_(&Choose(*dataset_, source, layer)) {
    name_ = layer_->GetName();
    TakeOverview();
    Rewind();
}

void VectorLayer::TakeOverview() {
    const auto [extent, count] = Look(*layer_, source_, name_);
    count_ = count;
    extent_ = platform::Create(platform::Current().newEnvelope);
    extent_->XMin(extent.MinX);
    extent_->XMax(extent.MaxX);
    extent_->YMin(extent.MinY);
    extent_->YMax(extent.MaxY);
}

VectorLayer::~VectorLayer() = default;

std::shared_ptr<IEnvelope> VectorLayer::AreaOfInterest() {
    return extent_;
}

std::unique_ptr<OGRFeature> VectorLayer::Next() {
    const ErrorCapture errors;
    std::unique_ptr<OGRFeature> feature(layer_->GetNextFeature());
    complaint_ = errors.Reason("");
    if (!feature) {
        if (errors.Failed()) BreakOff(complaint_);
        if (given_ < count_)
            BreakOff("it gave " + std::to_string(given_) + " of " + std::to_string(count_) +
                     " features; was it changed while it was read?");
        return feature;
    }
    ++given_;
    const std::string mended = MendTexts(*feature);
    mended_ += mended.empty() ? 0 : 1;
    if (mendedField_.empty()) mendedField_ = mended;
    return feature;
}

void VectorLayer::BreakOff(const std::string& why) const {
    throw RuntimeError(static_cast<Long>(Fault::DeviceIOError), source_ + " breaks off: " + why);
}

void VectorLayer::Rewind() {
    layer_->ResetReading();
    given_ = 0;
}

std::vector<std::string> VectorLayer::Files() const {
    return SourceFiles(*dataset_, source_);
}

std::string VectorLayer::Modified() const {
    namespace fs = std::filesystem;
    std::time_t youngest = 0;
    for (const std::string& file : Files()) {
        std::error_code failed;
        if (!fs::is_regular_file(file, failed)) continue;
        const auto time = std::chrono::file_clock::to_sys(fs::last_write_time(file, failed));
        youngest = std::max(
            youngest, std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time)));
    }
    std::tm utc{};
    if (youngest == 0 || gmtime_r(&youngest, &utc) == nullptr) return "";
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.000Z", &utc)};
}

OGRFeatureDefn& VectorLayer::Definition() const {
    return *layer_->GetLayerDefn();
}

OGRSpatialReference* VectorLayer::SpatialReference() const {
    return layer_->GetSpatialRef();
}

std::shared_ptr<VectorLayer> OpenVectorLayer(const std::string& source, const std::string& layer) {
    Start();
    return std::shared_ptr<VectorLayer>(new VectorLayer(source, layer));
}

}  // namespace orvo::gdal
