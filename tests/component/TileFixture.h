// What the tests of clsTileImage share: a tiler over a fake raster layer.
#pragma once

#include <array>

#include "platform/fake/Vector.h"
#include "tests/component/Fixture.h"
#include "tileimage/clsTileImage.h"

namespace orvo {

/// Reaches the private state and procedures of a tiler.
class TileImageProbe {
  public:
    explicit TileImageProbe(clsTileImage& tiler) : tiler_(tiler) {}
    std::string ExtentText(Long x, Long y) { return tiler_.GetTileExtent(x, y); }
    /// Pixels of a tile, columns and rows.
    std::array<Long, 4> Grid() const {
        return {tiler_.tilePixelWidth_, tiler_.tilePixelHeight_, tiler_.tileCountX_, tiler_.tileCountY_};
    }
    /// Name, path and working extension.
    std::string Image() const {
        return tiler_.imageName_ + " " + tiler_.imagePath_ + " " + tiler_.workingExtension_;
    }
    /// Left and upper edge, size of a cell.
    std::array<double, 4> Place() const {
        return {tiler_.extentXMin_, tiler_.extentYMax_, tiler_.cellSizeX_, tiler_.cellSizeY_};
    }
    bool IsBound() const { return tiler_.imageLayer_ != nullptr; }

  private:
    clsTileImage& tiler_;
};

struct TileTest : ComponentTest {
    TileTest() { Renew(); }
    /// A new tiler with usual settings and no layer.
    void Renew() {
        world->PutFile("C:\\img\\ortho.png", "picture");
        tiler = std::make_unique<clsTileImage>();
        status = std::make_shared<fake::StatusDisplay>(world);
        tiler->SavePath("C:\\out");
        tiler->GraphicFormat("PNG");
        tiler->GraphicConvertProg("convert.exe");
        tiler->GraphicQuality(75);
        tiler->StatusObject(status);
        facts = {};
    }
    void BindLayer(const std::string& file = "") {
        tiler->ImageLayer(fake::MakeRasterLayer(world, facts), file);
    }
    /// Binds the layer of `facts`, whose file is there, and sets square tiles.
    void Bind(Long size) {
        if (!world->HasFile(facts.filePath)) world->PutFile(facts.filePath, "picture");
        BindLayer();
        tiler->TileWidth(size);
        tiler->TileHeight(size);
    }
    /// The messages shown since the last look; all are critical.
    std::string Messages() {
        std::string all;
        for (const fake::Message& shown : std::exchange(world->messages, {}))
            all += shown.icon == MessageIcon::Critical ? shown.title + ": " + shown.text : "not critical";
        return all;
    }
    TileImageProbe Probe() { return TileImageProbe(*tiler); }

    std::unique_ptr<clsTileImage> tiler;
    std::shared_ptr<fake::StatusDisplay> status;
    fake::LayerFacts facts;
};

}  // namespace orvo
