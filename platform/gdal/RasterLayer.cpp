#include "platform/gdal/RasterLayer.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gdal_utils.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "platform/Platform.h"
#include "platform/gdal/DatasetName.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/ScopedOption.h"
#include "platform/gdal/SourceOptions.h"
#include "platform/gdal/Startup.h"
#include "support/SystemPath.h"

namespace orvo::gdal {
namespace {

constexpr int kSubdatasetsToName = 3;
/// Shear below this many cells over the whole raster is noise of the arithmetic.
constexpr double kShearNoise = 1e-6;

[[noreturn]] void Refuse(const std::string& name, const std::string& why) {
    throw RuntimeError(static_cast<Long>(Fault::AutomationError), name + " " + why);
}

bool IsOnDisk(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

bool IsEmptyFile(const std::string& path) {
    std::error_code failed;
    return std::filesystem::is_regular_file(path, failed) && std::filesystem::file_size(path, failed) == 0;
}

/// Whether a source without a raster has a layer with geometries.
bool HoldsFeatures(const std::string& path) {
    const ErrorCapture ignored;
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    if (!dataset) return false;
    for (OGRLayer* const layer : dataset->GetLayers())
        if (layer->GetGeomType() != wkbNone) return true;
    return false;
}

std::unique_ptr<GDALDataset> Open(const std::string& name) {
    const std::string path = !IsOnDisk(name) && IsOnDisk(SystemPath(name)) ? SystemPath(name) : name;
    if (!IsOnDisk(path) && path.find_first_of(":<") == std::string::npos && !path.starts_with("/vsi")) {
        throw RuntimeError(static_cast<Long>(Fault::FileNotFound),
                           "File not found: " + name + ". Check the path and the spelling.");
    }
    if (IsEmptyFile(path)) Refuse(name, "is an empty file. Fetch or copy it again.");
    const ErrorCapture errors;
    std::unique_ptr<GDALDataset> dataset(GDALDataset::Open(
        path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR, nullptr, kSourceOptions));
    if (!dataset) {
        if (HoldsFeatures(path)) Refuse(name, "holds features, no image. Cut it with 'orvo-tile vector'.");
        Refuse(name, "cannot be opened as a raster (" + errors.Reason("no driver takes it") +
                         "). Check that it is complete, and in a format that 'gdalinfo --formats' lists.");
    }
    return dataset;
}

/// Refuses a dataset without bands and says which rasters it holds.
void RequireBands(GDALDataset& dataset, const std::string& name) {
    if (dataset.GetRasterCount() > 0 && dataset.GetRasterXSize() > 0 && dataset.GetRasterYSize() > 0) return;
    char** const list = dataset.GetMetadata("SUBDATASETS");
    std::string names;
    int count = 0;
    for (int i = 1; const char* inner = CSLFetchNameValue(list, CPLSPrintf("SUBDATASET_%d_NAME", i)); ++i) {
        if (++count <= kSubdatasetsToName) names += std::string(names.empty() ? "" : ", ") + inner;
    }
    if (count == 0) Refuse(name, "holds no raster bands. Name a file with an image or a grid in it.");
    if (count > kSubdatasetsToName) names += ", ...";
    Refuse(name, "holds " + std::to_string(count) + " rasters. Name one of them: " + names);
}

bool IsIdentity(const std::array<double, 6>& t) {
    return t == std::array<double, 6>{0, 1, 0, 0, 0, 1};
}

/// Refuses what does not lie straight.
void RequireStraight(const std::array<double, 6>& t, GDALDataset& dataset, const std::string& name) {
    const std::string remedy = " Warp it first: gdalwarp SOURCE straight.tif";
    const bool finite = std::all_of(t.begin(), t.end(), [](double value) { return std::isfinite(value); });
    if (std::abs(t[2]) * dataset.GetRasterYSize() > kShearNoise * std::abs(t[1]) ||
        std::abs(t[4]) * dataset.GetRasterXSize() > kShearNoise * std::abs(t[5])) {
        Refuse(name, "is rotated or sheared." + remedy);
    }
    if (!finite || t[1] == 0 || t[5] == 0) Refuse(name, "has cells without a size. Repair its georeference.");
    if (t[5] > 0) Refuse(name, "lies south up." + remedy);
    if (t[1] < 0) Refuse(name, "runs from east to west." + remedy);
}

bool HasOnlyControlPoints(GDALDataset& dataset) {
    return dataset.GetGCPCount() > 0 || dataset.GetMetadata("RPC") != nullptr ||
           dataset.GetMetadata("GEOLOCATION") != nullptr;
}

bool IsDatabase(const std::string& driver) {
    static const std::array<std::string, 7> kDatabases = {
        "GPKG", "MBTiles", "Rasterlite", "OpenFileGDB", "SQLite", "PostGISRaster", "GeoRaster"};
    return std::find(kDatabases.begin(), kDatabases.end(), driver) != kDatabases.end();
}

std::string DriverOf(GDALDataset& dataset) {
    GDALDriver* const driver = dataset.GetDriver();
    return driver == nullptr ? "" : driver->GetDescription();
}

using MosaicOptions = std::unique_ptr<GDALBuildVRTOptions, decltype(&GDALBuildVRTOptionsFree)>;
using TranslateOptions = std::unique_ptr<GDALTranslateOptions, decltype(&GDALTranslateOptionsFree)>;

/// One virtual raster over all of them. What does not fit to the others is an error, not left out.
std::unique_ptr<GDALDataset> Mosaic(const std::vector<std::string>& names) {
    CPLStringList paths;
    for (const std::string& name : names) {
        const auto part = Open(name);
        RequireBands(*part, name);
        paths.AddString(part->GetDescription());
    }
    CPLStringList arguments;
    arguments.AddString("-strict");
    const ErrorCapture errors;
    const MosaicOptions options(GDALBuildVRTOptionsNew(arguments.List(), nullptr), GDALBuildVRTOptionsFree);
    std::unique_ptr<GDALDataset> mosaic(GDALDataset::FromHandle(
        GDALBuildVRT("", paths.size(), nullptr, paths.List(), options.get(), nullptr)));
    if (!mosaic || errors.Failed()) {
        Refuse(names.front() + " and the other sources",
               "do not make one mosaic (" + errors.Reason("unlike") +
                   "). Bring them to one form first with gdalwarp.");
    }
    return mosaic;
}

GDALColorInterp MeaningOf(GDALRasterBand& band, int number, int count) {
    const GDALColorInterp said = band.GetColorInterpretation();
    if (said == GCI_AlphaBand || said == GCI_PaletteIndex) return said;
    if (count < 3) return GCI_GrayIndex;
    return number <= 3 ? static_cast<GDALColorInterp>(GCI_RedBand + number - 1) : GCI_Undefined;
}

std::unique_ptr<GDALDataset> Choose(std::unique_ptr<GDALDataset> dataset, const std::vector<int>& bands,
                                    const std::string& name) {
    CPLStringList arguments;
    for (const char* const argument : {"-q", "-of", "VRT"}) arguments.AddString(argument);
    for (const int band : bands) {
        if (band < 1 || band > dataset->GetRasterCount())
            Refuse(name, "has no band " + std::to_string(band) + ", but bands 1 to " +
                             std::to_string(dataset->GetRasterCount()) + ".");
        arguments.AddString("-b");
        arguments.AddString(std::to_string(band).c_str());
    }
    const ErrorCapture errors;
    const TranslateOptions options(GDALTranslateOptionsNew(arguments.List(), nullptr),
                                   GDALTranslateOptionsFree);
    std::unique_ptr<GDALDataset> chosen(GDALDataset::FromHandle(
        GDALTranslate("", GDALDataset::ToHandle(dataset.get()), options.get(), nullptr)));
    if (!chosen) Refuse(name, "cannot be read by bands (" + errors.Reason("no reason was given") + ").");
    const int count = chosen->GetRasterCount();
    for (int i = 1; i <= count; ++i) {
        GDALRasterBand& band = *chosen->GetRasterBand(i);
        band.SetColorInterpretation(MeaningOf(band, i, count));
    }
    dataset.release()->ReleaseRef();  // the chosen bands hold it from now on
    return chosen;
}

std::unique_ptr<GDALDataset> Open(const RasterSource& source) {
    auto dataset = source.names.size() == 1 ? Open(source.names.front()) : Mosaic(source.names);
    if (source.bands.empty()) return dataset;
    RequireBands(*dataset, source.names.front());
    return Choose(std::move(dataset), source.bands, source.names.front());
}

}  // namespace

RasterLayer::RasterLayer(RasterSource source)
    : source_(std::move(source)),
      dataset_(Open(source_)),
      name_(source_.names.front()),
      columns_(dataset_->GetRasterXSize()),
      rows_(dataset_->GetRasterYSize()),
      bands_(dataset_->GetRasterCount()) {
    RequireBands(*dataset_, name_);
    const std::string driver = DriverOf(*dataset_);
    format_ = driver == "OpenFileGDB" ? "FGDBR" : driver;
    Locate();
    NameSource();
}

RasterLayer::~RasterLayer() = default;

void RasterLayer::Locate() {
    georeferenced_ = dataset_->GetGeoTransform(transform_.data()) == CE_None && !IsIdentity(transform_);
    if (georeferenced_) {
        RequireStraight(transform_, *dataset_, name_);
        return;
    }
    if (HasOnlyControlPoints(*dataset_)) {
        Refuse(name_, "is placed by control points only. Warp it first: gdalwarp SOURCE straight.tif");
    }
    transform_ = {0, 1, 0, static_cast<double>(rows_), 0, -1};
}

void RasterLayer::NameSource() {
    auto parts = ParseContainedName(name_);
    if (!parts && IsDatabase(DriverOf(*dataset_))) parts = ContainedName{name_, ""};
    contained_ = parts.has_value();
    if (!contained_) {
        filePath_ = name_;
        return;
    }
    if (parts->inner.empty()) parts->inner = StemOf(parts->container);
    filePath_ = parts->container + "\\" + parts->inner;
}

GDALDataset& RasterLayer::Dataset() const {
    if (!dataset_) throw RuntimeError(Fault::DeviceIOError, name_ + " is gone or has changed");
    return *dataset_;
}

/// The source opened anew; empty where that fails or it is no longer the raster that it was.
std::unique_ptr<GDALDataset> RasterLayer::OpenAgain() const {
    try {
        auto fresh = Open(source_);
        const bool same = fresh->GetRasterXSize() == columns_ && fresh->GetRasterYSize() == rows_ &&
                          fresh->GetRasterCount() == bands_;
        return same ? std::move(fresh) : nullptr;
    } catch (const RuntimeError&) {
        return nullptr;
    }
}

GDALDataset& RasterLayer::DatasetForRows() {
    if (!triedRows_ && format_ == "GTiff") {
        const ScopedOption past("GTIFF_DIRECT_IO", "YES");
        forRows_ = OpenAgain();
    }
    triedRows_ = true;
    return forRows_ ? *forRows_ : Dataset();
}

void RasterLayer::Reopen() {
    dataset_.reset();
    forRows_.reset();
    triedRows_ = false;
    dataset_ = OpenAgain();
}

std::shared_ptr<IEnvelope> RasterLayer::Extent() {
    auto extent = platform::Create(platform::Current().newEnvelope);
    extent->XMin(transform_[0]);
    extent->XMax(transform_[0] + Width() * transform_[1]);
    extent->YMax(transform_[3]);
    extent->YMin(transform_[3] + Height() * transform_[5]);
    return extent;
}

std::string RasterLayer::SpatialReference() const {
    return Dataset().GetProjectionRef();
}

std::string RasterLayer::BandType(int band) const {
    GDALRasterBand* const found = Dataset().GetRasterBand(band);
    if (found == nullptr) throw RuntimeError(Fault::SubscriptOutOfRange);
    return GDALGetDataTypeName(found->GetRasterDataType());
}

std::shared_ptr<RasterLayer> OpenRasterLayer(const RasterSource& source) {
    Start();
    return std::shared_ptr<RasterLayer>(new RasterLayer(source));
}

}  // namespace orvo::gdal
