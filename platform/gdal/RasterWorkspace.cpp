#include "platform/gdal/RasterWorkspace.h"

#include <filesystem>
#include <string>
#include <utility>

#include "platform/RuntimeError.h"
#include "platform/gdal/RasterLayer.h"
#include "support/SystemPath.h"

namespace orvo::gdal {
namespace {

class RasterWorkspace final : public IRasterWorkspace {
  public:
    explicit RasterWorkspace(std::string path) : path_(std::move(path)) {}
    std::string PathName() override { return path_; }
    std::shared_ptr<IRasterDataset> OpenRasterDataset(const std::string& name) override {
        return OpenRasterLayer((std::filesystem::path(SystemPath(path_)) / SystemPath(name)).string());
    }

  private:
    std::string path_;
};

class RasterWorkspaceFactory final : public IRasterWorkspaceFactory {
  public:
    std::shared_ptr<IWorkspace> OpenFromFile(const std::string& path, Long) override {
        std::error_code ignored;
        if (!std::filesystem::is_directory(SystemPath(path), ignored)) {
            throw RuntimeError(Fault::PathNotFound, path);
        }
        return std::make_shared<RasterWorkspace>(path);
    }
};

}  // namespace

std::shared_ptr<IRasterWorkspaceFactory> NewRasterWorkspaceFactory() {
    return std::make_shared<RasterWorkspaceFactory>();
}

}  // namespace orvo::gdal
