#include "tiling/raster/Products.h"

#include <gdal_priv.h>

#include <utility>

#include "platform/FailureInFlight.h"
#include "platform/files/PartFile.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"
#include "tiling/output/Mosaic.h"
#include "tiling/output/PreviewPage.h"
#include "tiling/output/TileIndex.h"
#include "tiling/output/WorldFile.h"

namespace orvo::tiling {
namespace {

class Writer {
  public:
    Writer(const RasterJob& job, const LayerFacts& layer, const std::string& folder,
           const std::vector<PlacedTile>& tiles, std::vector<std::string> leftovers, DraftSet& drafts)
        : job_(job),
          layer_(layer),
          folder_(folder),
          tiles_(tiles),
          companions_(std::move(leftovers)),
          drafts_(drafts) {}

    Products Write() {
        Try([&] { WriteWorldFiles(); });
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

    void WriteWorldFiles() {
        if (!job_.worldFiles) return;
        const std::string prefix = folder_ + "/";
        for (const PlacedTile& tile : tiles_) {
            const std::string name = WorldFileName(tile.name);
            if (const auto failed = files::WriteWhole(prefix + name, WorldFileText(tile)))
                throw RunError("cannot write the world file " + name + ": " + failed.message());
            companions_.push_back(name);
        }
    }

    void DraftMosaic() {
        if (!job_.vrt || tiles_.empty()) return;
        const std::string text = MosaicText(folder_, tiles_, layer_.wkt, layer_.cell.X, layer_.cell.Y);
        drafts_.Add("mosaic", ".vrt", text);
    }

    void DraftPage() {
        if (!job_.preview || tiles_.empty()) return;
        drafts_.Add("index", ".html", PreviewPage(FileNameOf(job_.input), tiles_));
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
    const std::vector<PlacedTile>& tiles_;
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
                       const std::vector<PlacedTile>& tiles, const std::vector<std::string>& leftovers,
                       DraftSet& drafts) {
    if (tiles.empty() && leftovers.empty()) return {};
    return Writer(job, layer, folder, tiles, leftovers, drafts).Write();
}

}  // namespace orvo::tiling
