#include "host/Products.h"

#include <gdal_priv.h>

#include <memory>

#include "host/Errors.h"
#include "host/Mosaic.h"
#include "host/PreviewPage.h"
#include "host/Publish.h"
#include "host/ReferenceSystem.h"
#include "host/TileIndex.h"
#include "host/TileLedger.h"
#include "host/WorldFile.h"
#include "support/FileReplace.h"

namespace orvo::host {
namespace {

class Writer {
  public:
    Writer(const RasterJob& job, gdal::RasterLayer& layer, const std::string& folder,
           const std::vector<PlacedTile>& tiles, const std::vector<std::string>& leftovers)
        : job_(job), layer_(layer), folder_(folder), tiles_(tiles), companions_(leftovers) {}

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
        } catch (const std::exception& error) {
            products_.errors.emplace_back(error.what());
        }
    }

    void WriteWorldFiles() {
        if (!job_.worldFiles) return;
        for (const PlacedTile& tile : tiles_) {
            const std::string name = WorldFileName(tile.name);
            const std::string reason = ReplaceFile(folder_ + "/" + name, WorldFileText(tile));
            if (!reason.empty()) throw RunError("cannot write the world file " + name + ": " + reason);
            companions_.push_back(name);
        }
    }

    void DraftMosaic() {
        if (!job_.vrt || tiles_.empty()) return;
        auto draft = std::make_unique<DraftFile>(folder_, ".vrt");
        const Point cell = layer_.MeanCellSize();
        draft->Write(MosaicText(folder_, tiles_, layer_.SpatialReference(), cell.X, cell.Y));
        vrt_ = std::move(draft);
    }

    void DraftPage() {
        if (!job_.preview || tiles_.empty()) return;
        auto draft = std::make_unique<DraftFile>(folder_, ".html");
        draft->Write(PreviewPage(FileNameOf(job_.input), tiles_));
        page_ = std::move(draft);
    }

    void PublishAll() {
        const ReferenceSystem system = NameReferenceSystem(layer_.Dataset().GetSpatialRef());
        if (!system.notice.empty()) products_.notices.push_back(system.notice);
        DraftFile index(folder_, ".geojson");
        int number = 1;
        while (!PublishAs(number, index, system.name)) ++number;
    }

    /// All three under one number, or none.
    bool PublishAs(int number, DraftFile& index, const std::string& system) {
        const std::string indexName = NumberedName("tiles", number, ".geojson");
        const std::string vrtName = NumberedName("mosaic", number, ".vrt");
        const std::string pageName = NumberedName("index", number, ".html");
        std::vector<std::string> companions = companions_;
        if (vrt_) companions.push_back(vrtName);
        if (page_) companions.push_back(pageName);
        index.Write(IndexText(tiles_, system, companions));
        if (vrt_ && !vrt_->Publish(vrtName)) return false;
        if ((page_ && !page_->Publish(pageName)) || !index.Publish(indexName)) {
            if (page_) page_->Withdraw();
            if (vrt_) vrt_->Withdraw();
            return false;
        }
        products_.index = folder_ + "/" + indexName;
        if (vrt_) products_.vrt = folder_ + "/" + vrtName;
        if (page_) products_.preview = folder_ + "/" + pageName;
        return true;
    }

    const RasterJob& job_;
    gdal::RasterLayer& layer_;
    const std::string& folder_;
    const std::vector<PlacedTile>& tiles_;
    std::vector<std::string> companions_;
    std::unique_ptr<DraftFile> vrt_;
    std::unique_ptr<DraftFile> page_;
    Products products_;
};

}  // namespace

Products WriteProducts(const RasterJob& job, gdal::RasterLayer& layer, const std::string& folder,
                       const std::vector<PlacedTile>& tiles, const std::vector<std::string>& leftovers) {
    if (tiles.empty() && leftovers.empty()) return {};
    return Writer(job, layer, folder, tiles, leftovers).Write();
}

}  // namespace orvo::host
