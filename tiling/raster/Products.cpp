#include "tiling/raster/Products.h"

#include <gdal_priv.h>

#include <utility>

#include "platform/FailureInFlight.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"
#include "tiling/output/Mosaic.h"
#include "tiling/output/PreviewPage.h"
#include "tiling/output/TileIndex.h"

namespace orvo::tiling {
namespace {

class Writer {
  public:
    Writer(const RasterJob& job, const LayerFacts& layer, const std::string& folder, const TileList& tiles,
           std::vector<std::string> companions, DraftSet& drafts)
        : job_(job),
          layer_(layer),
          folder_(folder),
          tiles_(tiles),
          companions_(std::move(companions)),
          drafts_(drafts) {}

    Products Write() {
        Try([&] { DraftMosaic(); });
        Try([&] { DraftPage(); });
        Try([&] { PublishAll(); });
        return std::move(products_);
    }

  private:
    template <class Step>
    void Try(Step&& step) {
        try {
            step();
        } catch (...) {
            products_.errors.push_back(FailureInFlight().Description());
        }
    }

    bool HasTiles() const {
        bool any = false;
        tiles_([&](const PlacedTile&) { any = true; });
        return any;
    }

    void DraftMosaic() {
        if (!job_.vrt || !HasTiles()) return;
        const std::string text = MosaicText(folder_, tiles_, layer_.wkt, layer_.cell.X, layer_.cell.Y);
        drafts_.Add("mosaic", ".vrt", text);
    }

    void DraftPage() {
        if (!job_.preview || !HasTiles()) return;
        drafts_.Add("index", ".html", PreviewPage(FileNameOf(job_.inputs.front()), tiles_));
    }

    void PublishAll() {
        if (!layer_.system.notice.empty()) products_.notices.push_back(layer_.system.notice);
        products_.index = drafts_.Publish([&](const std::vector<std::string>& names) {
            std::vector<std::string> companions = companions_;
            companions.insert(companions.end(), names.begin(), names.end());
            return IndexText(tiles_, layer_.system.name, companions);
        });
        const auto& errors = drafts_.Errors();
        products_.errors.insert(products_.errors.end(), errors.begin(), errors.end());
        products_.vrt = drafts_.PathOf("mosaic");
        products_.preview = drafts_.PathOf("index");
    }

    const RasterJob& job_;
    const LayerFacts& layer_;
    const std::string& folder_;
    const TileList& tiles_;
    std::vector<std::string> companions_;
    DraftSet& drafts_;
    Products products_;
};

}  // namespace

LayerFacts::LayerFacts(gdal::RasterLayer& layer)
    : system(NameReferenceSystem(layer.Dataset().GetSpatialRef())),
      wkt(layer.SpatialReference()),
      cell(layer.MeanCellSize()) {}

Products WriteProducts(const RasterJob& job, const LayerFacts& layer, const std::string& folder,
                       const TileList& tiles, std::vector<std::string> companions, DraftSet& drafts) {
    return Writer(job, layer, folder, tiles, std::move(companions), drafts).Write();
}

}  // namespace orvo::tiling
