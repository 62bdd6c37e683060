#include "tiling/raster/Products.h"

#include <gdal_priv.h>

#include <memory>
#include <utility>

#include "platform/FailureInFlight.h"
#include "platform/files/PartFile.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"
#include "tiling/output/Mosaic.h"
#include "tiling/output/PreviewPage.h"
#include "tiling/output/Publish.h"
#include "tiling/output/ReferenceSystem.h"
#include "tiling/output/TileIndex.h"
#include "tiling/output/WorldFile.h"

namespace orvo::tiling {
namespace {

class Writer {
  public:
    Writer(const RasterJob& job, gdal::RasterLayer& layer, const std::string& folder,
           const std::vector<PlacedTile>& tiles, std::vector<std::string> leftovers)
        : job_(job),
          layer_(layer),
          folder_(folder),
          tiles_(tiles),
          companions_(std::move(leftovers)),
          drafts_(folder) {}

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
        const Point cell = layer_.MeanCellSize();
        const std::string text = MosaicText(folder_, tiles_, layer_.SpatialReference(), cell.X, cell.Y);
        drafts_.Add("mosaic", ".vrt", text);
    }

    void DraftPage() {
        if (!job_.preview || tiles_.empty()) return;
        drafts_.Add("index", ".html", PreviewPage(FileNameOf(job_.input), tiles_));
    }

    void PublishAll() {
        const ReferenceSystem system = NameReferenceSystem(layer_.Dataset().GetSpatialRef());
        if (!system.notice.empty()) products_.notices.push_back(system.notice);
        products_.index = drafts_.Publish("tiles", ".geojson", [&](const std::vector<std::string>& names) {
            std::vector<std::string> companions = companions_;
            companions.insert(companions.end(), names.begin(), names.end());
            return IndexText(tiles_, system.name, companions);
        });
        products_.vrt = drafts_.PathOf("mosaic");
        products_.preview = drafts_.PathOf("index");
    }

    const RasterJob& job_;
    gdal::RasterLayer& layer_;
    const std::string& folder_;
    const std::vector<PlacedTile>& tiles_;
    std::vector<std::string> companions_;
    DraftSet drafts_;
    Products products_;
};

}  // namespace

Products WriteProducts(const RasterJob& job, gdal::RasterLayer& layer, const std::string& folder,
                       const std::vector<PlacedTile>& tiles, const std::vector<std::string>& leftovers) {
    if (tiles.empty() && leftovers.empty()) return {};
    return Writer(job, layer, folder, tiles, leftovers).Write();
}

}  // namespace orvo::tiling
