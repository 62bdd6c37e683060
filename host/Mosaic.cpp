#include "host/Mosaic.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal.h>
#include <gdal_utils.h>

#include <cstdio>
#include <memory>

#include "host/Errors.h"

namespace orvo::host {
namespace {

struct FreeOptions {
    void operator()(GDALBuildVRTOptions* options) const { GDALBuildVRTOptionsFree(options); }
};
struct CloseDataset {
    void operator()(void* dataset) const { GDALClose(dataset); }
};

std::string Digits(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

/// The files that a dataset is made of, without itself.
std::size_t SourceCount(GDALDatasetH dataset) {
    const CPLStringList files(GDALGetFileList(dataset));
    std::size_t count = 0;
    for (int i = 1; i < files.size(); ++i) {
        const std::string name = files[i];
        if (!name.ends_with("w") && !name.ends_with(".aux.xml")) ++count;  // world files are listed, too
    }
    return count;
}

}  // namespace

std::size_t WriteMosaic(const std::string& folder, const std::string& name,
                        const std::vector<PlacedTile>& tiles, const std::string& system, double cellWidth,
                        double cellHeight) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    CPLErrorReset();
    CPLStringList files;
    for (const PlacedTile& tile : tiles) files.AddString((folder + "/" + tile.name).c_str());
    CPLStringList arguments;
    for (const char* word : {"-resolution", "user", "-tr"}) arguments.AddString(word);
    arguments.AddString(Digits(cellWidth).c_str());
    arguments.AddString(Digits(cellHeight).c_str());
    if (!system.empty()) {
        arguments.AddString("-a_srs");
        arguments.AddString(system.c_str());
    }
    const std::unique_ptr<GDALBuildVRTOptions, FreeOptions> options(
        GDALBuildVRTOptionsNew(arguments.List(), nullptr));
    const std::string path = folder + "/" + name;
    const std::unique_ptr<void, CloseDataset> vrt(
        GDALBuildVRT(path.c_str(), files.size(), nullptr, files.List(), options.get(), nullptr));
    if (!vrt) throw RunError("the mosaic could not be written: " + std::string(CPLGetLastErrorMsg()));
    GDALFlushCache(vrt.get());
    if (CPLGetLastErrorType() >= CE_Failure) {
        throw RunError("the mosaic could not be written: " + std::string(CPLGetLastErrorMsg()));
    }
    return SourceCount(vrt.get());
}

}  // namespace orvo::host
