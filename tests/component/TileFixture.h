// What the tests of clsTileImage share: a tiler over a fake raster layer.
#pragma once

#include "tests/component/Fixture.h"
#include "tileimage/clsTileImage.h"

namespace orvo {

/// Reaches the private state and procedures of a tiler.
class TileImageProbe {
  public:
    explicit TileImageProbe(clsTileImage& tiler) : tiler_(tiler) {}
    std::string ExtentText(Long x, Long y) { return tiler_.GetTileExtent(x, y); }
    std::string SaveTiff(const std::string& path) { return tiler_.SaveTIFFToWWW(path); }
    void Message(const std::string& text) { tiler_.CreateMessageText(text); }
    Long PixelWidth() const { return tiler_.tilePixelWidth_; }
    Long PixelHeight() const { return tiler_.tilePixelHeight_; }
    Long CountX() const { return tiler_.tileCountX_; }
    Long CountY() const { return tiler_.tileCountY_; }
    const std::string& Name() const { return tiler_.imageName_; }
    const std::string& Path() const { return tiler_.imagePath_; }
    std::string& Extension() { return tiler_.workingExtension_; }
    double CellSizeX() const { return tiler_.cellSizeX_; }
    double XMin() const { return tiler_.extentXMin_; }
    double YMax() const { return tiler_.extentYMax_; }
    const std::shared_ptr<IRasterLayer>& Layer() const { return tiler_.imageLayer_; }

  private:
    clsTileImage& tiler_;
};

class TileTest : public ComponentTest {
  protected:
    TileTest() {
        world->PutFile("C:\\img\\ortho.png", "picture");
        Renew();
    }
    /// A new tiler with usual settings and no layer.
    void Renew() {
        tiler = std::make_unique<clsTileImage>();
        status = std::make_shared<fake::StatusDisplay>(world);
        tiler->SavePath("C:\\out");
        tiler->GraphicFormat("PNG");
        tiler->GraphicConvertProg("convert.exe");
        tiler->GraphicQuality(75);
        tiler->StatusObject(status);
        facts = {};
    }
    /// Binds the layer of `facts` and sets square tiles.
    void Bind(Long size) {
        if (!world->HasFile(facts.filePath)) world->PutFile(facts.filePath, "picture");
        tiler->ImageLayer(fake::MakeRasterLayer(world, facts));
        tiler->TileWidth(size);
        tiler->TileHeight(size);
    }
    std::shared_ptr<IEnvelope> MakeEnvelope(double xMin, double yMin, double xMax, double yMax) {
        auto envelope = platform::Create(platform::Current().newEnvelope);
        envelope->XMin(xMin);
        envelope->XMax(xMax);
        envelope->YMin(yMin);
        envelope->YMax(yMax);
        return envelope;
    }
    /// The files in the output folder, by name.
    std::vector<std::string> OutputFiles() const {
        std::vector<std::string> names;
        for (const auto& [path, content] : world->files) {
            if (path.starts_with("C:\\out\\")) names.push_back(path.substr(7));
        }
        return names;
    }
    TileImageProbe Probe() { return TileImageProbe(*tiler); }

    std::unique_ptr<clsTileImage> tiler;
    std::shared_ptr<fake::StatusDisplay> status;
    fake::LayerFacts facts;
};

}  // namespace orvo
