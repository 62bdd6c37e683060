// The fake platform's raster layers and workspaces.
#include "platform/fake/Objects.h"

namespace orvo::fake {
namespace {

class RasterDataset : public IRasterDataset {
  public:
    RasterDataset(std::shared_ptr<World> world, std::string formatName)
        : world_(std::move(world)), formatName_(std::move(formatName)) {}
    std::string FormatName() override {
        world_->Call("RasterDataset.FormatName");
        return formatName_;
    }

  private:
    std::shared_ptr<World> world_;
    std::string formatName_;
};

class Raster : public IRaster {
  public:
    Raster(std::shared_ptr<World> world, LayerFacts facts)
        : world_(std::move(world)), facts_(std::move(facts)) {}
    Long Width() override {
        world_->Call("Raster.Width");
        return facts_.columns;
    }
    Long Height() override {
        world_->Call("Raster.Height");
        return facts_.rows;
    }
    Point MeanCellSize() override {
        world_->Call("Raster.MeanCellSize");
        return facts_.cellSize;
    }
    std::shared_ptr<IRasterDataset> RasterDataset() override {
        world_->Call("Raster.RasterDataset");
        return std::make_shared<fake::RasterDataset>(world_, facts_.formatName);
    }

  private:
    std::shared_ptr<World> world_;
    LayerFacts facts_;
};

class RasterLayer : public IRasterLayer {
  public:
    RasterLayer(std::shared_ptr<World> world, LayerFacts facts)
        : world_(std::move(world)), facts_(std::move(facts)) {}
    std::string FilePath() override {
        world_->Call("RasterLayer.FilePath");
        return facts_.filePath;
    }
    std::shared_ptr<IRaster> Raster() override {
        world_->Call("RasterLayer.Raster");
        return std::make_shared<fake::Raster>(world_, facts_);
    }
    bool IsInGeodatabase() override {
        world_->Call("RasterLayer.IsInGeodatabase");
        return facts_.inGeodatabase;
    }
    std::shared_ptr<IEnvelope> Extent() override {
        world_->Call("RasterLayer.Extent");
        auto extent = std::make_shared<memory::Envelope>();
        extent->XMin(facts_.xMin);
        extent->XMax(facts_.xMin + facts_.columns * facts_.cellSize.X);
        extent->YMax(facts_.yMax);
        extent->YMin(facts_.yMax - facts_.rows * facts_.cellSize.Y);
        return extent;
    }

  private:
    std::shared_ptr<World> world_;
    LayerFacts facts_;
};

class RasterWorkspace : public IRasterWorkspace {
  public:
    RasterWorkspace(std::shared_ptr<World> world, std::string path)
        : world_(std::move(world)), path_(std::move(path)) {}
    std::string PathName() override { return path_; }
    std::shared_ptr<IRasterDataset> OpenRasterDataset(const std::string& name) override {
        world_->Call("RasterWorkspace.OpenRasterDataset");
        const std::string path = path_ + "\\" + name;
        if (!world_->HasFile(path)) throw RuntimeError(Fault::FileNotFound, path);
        return std::make_shared<RasterDataset>(world_, "PNG");
    }

  private:
    std::shared_ptr<World> world_;
    std::string path_;
};

}  // namespace

std::shared_ptr<IRasterLayer> MakeRasterLayer(std::shared_ptr<World> world, LayerFacts facts) {
    return std::make_shared<RasterLayer>(std::move(world), std::move(facts));
}

std::shared_ptr<IWorkspace> RasterWorkspaceFactory::OpenFromFile(const std::string& path, Long /*hWnd*/) {
    world_->Call("RasterWorkspaceFactory.OpenFromFile");
    if (!world_->folders.contains(World::Normal(path))) throw RuntimeError(Fault::PathNotFound, path);
    return std::make_shared<RasterWorkspace>(world_, path);
}

}  // namespace orvo::fake
