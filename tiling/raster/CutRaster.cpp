// A raster run, from the opened source to the summary.
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <sstream>
#include <utility>

#include "platform/FailureInFlight.h"
#include "platform/gdal/SourceFiles.h"
#include "support/SystemPath.h"
#include "tileimage/clsTileImage.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"
#include "tiling/WatchedPlatform.h"
#include "tiling/output/OutputFolder.h"
#include "tiling/output/Rectangles.h"
#include "tiling/output/TileIndex.h"
#include "tiling/raster/CellPlan.h"
#include "tiling/raster/Notices.h"
#include "tiling/raster/Products.h"
#include "tiling/raster/RasterGrid.h"
#include "tiling/raster/RasterJob.h"
#include "tiling/raster/TileLedger.h"

namespace fs = std::filesystem;

namespace orvo::tiling {
namespace {

constexpr double kSamePlace = 1e-6;  ///< of a cell: a deviation below is the arithmetic's

std::string Text(const Rectangle& r) {
    std::ostringstream text;
    text.precision(15);
    text << r.xMin << ' ' << r.yMin << ' ' << r.xMax << ' ' << r.yMax;
    return text.str();
}

void CheckClip(gdal::RasterLayer& layer, const RasterJob& job) {
    if (!job.clip) return;
    const auto common = EnvelopeOf(*job.clip);
    common->Intersect(*layer.Extent());
    if (common->IsEmpty()) {
        throw UsageError("--clip " + Text(*job.clip) + " does not meet the layer, which lies at " +
                         Text(EdgesOf(*layer.Extent())));
    }
}

/// A reason without the name of the file it is about, on one line: reasons of different tiles become equal.
std::string PlainReason(std::string reason, const std::string& target) {
    for (const std::string& name : {target, SystemPath(target)}) {
        for (std::size_t at = reason.find(name); !name.empty() && at != std::string::npos;
             at = reason.find(name)) {
            reason.replace(at, name.size(), "the tile");
        }
    }
    for (char& c : reason) {
        if (c == '\n' || c == '\r') c = ' ';
    }
    while (reason.ends_with(' ')) reason.pop_back();
    return reason.empty() ? "no reason was given" : reason;
}

std::string Joined(const std::vector<std::string>& reasons) {
    std::string text;
    std::string last;
    for (const std::string& reason : reasons) {
        if (reason != last) text += (text.empty() ? "" : "; then: ") + reason;
        last = reason;
    }
    return text.empty() ? "no reason was given" : text;
}

class RasterRun {
  public:
    RasterRun(const RasterJob& job, const Callbacks& callbacks) : job_(job), callbacks_(callbacks) {}

    RasterSummary Run() {
        RefuseStream(job_.input);
        RefuseBackslash("INPUT", job_.input);
        RefuseBackslash("--name", job_.name);
        layer_ = gdal::OpenRasterLayer(job_.input);
        CheckFormat(SourceExtension(*layer_, job_), job_);
        CheckClip(*layer_, job_);
        grid_ = PlanGrid(*layer_, job_.tileWidth, job_.tileHeight);
        OutputFolder folder(job_.outdir);
        folder.CheckEarlier(job_.overwrite, SourceFiles());
        if (grid_.Count() > kMostTiles) RefuseGrid();
        summary_.input = job_.input;
        summary_.outdir = folder.Path();
        summary_.notices = FormatNotices(*layer_, job_);
        const CellPlan plan(*layer_, grid_, job_.clip);
        const LayerFacts facts(*layer_);
        folder.Prepare();
        try {
            CutAndPublish(plan, facts);
        } catch (...) {
            folder.RemoveIfUnused();
            throw;
        }
        if (summary_.LeavesNothing()) folder.RemoveIfUnused();
        summary_.interrupted = callbacks_.interrupted();
        return std::move(summary_);
    }

  private:
    void CutAndPublish(const CellPlan& plan, const LayerFacts& facts) {
        constexpr std::size_t kNames = 64;  // a tile's, a world file's, an exported TIFF's
        TileLedger ledger(plan, callbacks_.progress);
        std::unique_ptr<DraftSet> drafts;
        try {
            drafts = std::make_unique<DraftSet>(summary_.outdir,
                                                IndexRoom(plan.Count(), facts.system.name, kNames));
            Cut(ledger);
        } catch (const RunError& error) {
            summary_.errors.emplace_back(error.what());
        }
        Collect(plan, ledger);
        if (drafts) AddProducts(facts, *drafts);
    }

    std::vector<std::string> SourceFiles() {
        std::vector<std::string> files = gdal::SourceFiles(layer_->Dataset(), job_.input);
        files.push_back(job_.name);
        return files;
    }

    /// Everything but the output folder.
    std::unique_ptr<clsTileImage> MakeTiler() {
        auto tiler = std::make_unique<clsTileImage>();
        tiler->ImageLayer(layer_, job_.name);
        tiler->TileWidth(job_.tileWidth);
        tiler->TileHeight(job_.tileHeight);
        tiler->GraphicFormat(job_.format);
        tiler->GraphicQuality(job_.quality);
        tiler->GraphicConvertProg(job_.converter);
        if (job_.clip) tiler->ClipEnvelope(EnvelopeOf(*job_.clip));
        return tiler;
    }

    /// The tiler's own message, then what would do.
    [[noreturn]] void RefuseGrid() {
        if (grid_.Count() <= std::numeric_limits<Long>::max()) {
            const WatchedPlatform watched(callbacks_.interrupted, {});
            MakeTiler()->Tile();
        }
        const Long size = SmallestTileSize(*layer_);
        throw UsageError("this grid has " + std::to_string(grid_.columns) + " x " +
                         std::to_string(grid_.rows) + " = " + std::to_string(grid_.Count()) +
                         " tiles, and at most " + std::to_string(kMostTiles) +
                         " are cut in one run; --tile-size " + std::to_string(size) + " would do");
    }

    static WatchedPlatform::Events EventsOf(TileLedger& ledger) {
        WatchedPlatform::Events events;
        events.onFailureShown = [&ledger](const std::string& failure) {
            ledger.AddReason(PlainReason(failure, ""));
        };
        events.onNewEnvelope = [&ledger] { ledger.AddEnvelope(); };
        events.services.onFailure = [&ledger](const utility::Request& asked, const std::string& reason) {
            ledger.AddFailure(asked, PlainReason(reason, asked.target));
        };
        events.services.onWritten = [&ledger](const utility::WrittenImage& image) { ledger.AddImage(image); };
        return events;
    }

    void Cut(TileLedger& ledger) {
        const WatchedPlatform watched(callbacks_.interrupted, EventsOf(ledger));
        const auto tiler = MakeTiler();
        tiler->SavePath(summary_.outdir);
        tiler->StatusObject(std::shared_ptr<IStatusDisplay>(&ledger, [](IStatusDisplay*) {}));
        ledger.Watch(tiler->TileObjectDict());
        callbacks_.notice("cutting " + FileNameOf(job_.input) + " (" + std::to_string(layer_->Width()) +
                          " x " + std::to_string(layer_->Height()) + " pixels) into " +
                          std::to_string(grid_.columns) + " x " + std::to_string(grid_.rows) + " tiles of " +
                          std::to_string(grid_.tileWidth) + " x " + std::to_string(grid_.tileHeight) +
                          " pixels");
        try {
            tiler->Tile();
        } catch (...) {
            // The error dialog itself failed, as where its log cannot be written; what is there stays.
            if (!callbacks_.interrupted()) ledger.AddReason(PlainReason(FailureInFlight().Description(), ""));
        }
        ledger.Finish();
        summary_.shown = watched.Shown();
    }

    /// Sorts the cells into written, failed and outside; whatever the run does not account for was not
    /// reached.
    void Collect(const CellPlan& plan, const TileLedger& ledger) {
        summary_.expected = static_cast<Long>(plan.Count());
        const auto& early = ledger.EarlyReasons();
        summary_.errors.insert(summary_.errors.end(), early.begin(), early.end());
        const auto& cells = ledger.Cells();
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const CellRecord& cell = cells[i];
            const auto index = static_cast<std::int64_t>(i);
            const bool stopped = callbacks_.interrupted() && i + 1 == cells.size() && cell.reasons.empty();
            if (!cell.tile.empty()) {
                CollectTile(plan, index, cell);
            } else if (plan.At(index).inside || !cell.reasons.empty()) {
                if (!stopped) AddFailure(plan, index, Joined(cell.reasons));
            } else if (!stopped) {
                ++summary_.outside;
            }
            KeepLeftovers(cell);
        }
        if (shifted_ > 0) {
            summary_.notices.push_back(
                std::to_string(shifted_) +
                " clipped tiles do not fill their rectangles in the index exactly: they are cut in whole "
                "pixels, where a fraction goes up and an odd number gains one; world files and preview show "
                "where they lie");
        }
        if (!summary_.leftovers.empty()) {
            summary_.notices.push_back(std::to_string(summary_.leftovers.size()) +
                                       " exported TIFFs that could not be converted are kept in the folder");
        }
    }

    void AddFailure(const CellPlan& plan, std::int64_t index, std::string reason) {
        summary_.failures.push_back({plan.ColumnOf(index), plan.RowOf(index), std::move(reason)});
    }

    void CollectTile(const CellPlan& plan, std::int64_t index, const CellRecord& cell) {
        std::error_code missing;
        const fs::path path = fs::path(summary_.outdir) / cell.tile;
        if (!fs::is_regular_file(path, missing) || fs::file_size(path, missing) == 0)
            return AddFailure(plan, index, "the tile " + cell.tile + " has vanished");
        ++summary_.written;
        if (!cell.reasons.empty()) summary_.recoveries.push_back(Joined(cell.reasons));
        const Rectangle envelope = EdgesOf(*cell.envelope);
        PlacedTile tile{cell.tile, plan.ColumnOf(index), plan.RowOf(index), envelope, envelope, 0, 0};
        Place(cell, tile);
        tiles_.push_back(std::move(tile));
    }

    /// What the tile's pixels show, as the service that wrote it has told.
    void Place(const CellRecord& cell, PlacedTile& tile) {
        for (const utility::WrittenImage& image : cell.images) {
            if (FileNameOf(image.path) != cell.tile) continue;
            if (image.extent) {
                tile.placement = {image.extent->xMin, image.extent->yMin, image.extent->xMax,
                                  image.extent->yMax};
                tile.width = image.extent->width;
                tile.height = image.extent->height;
            } else if (image.window) {
                PlaceWindow(*image.window, tile);
            }
        }
    }

    void PlaceWindow(const PixelWindow& window, PlacedTile& tile) {
        const auto& t = layer_->GeoTransform();
        tile.width = window.width;
        tile.height = window.height;
        tile.placement = {t[0] + window.column * t[1], t[3] + (window.row + window.height) * t[5],
                          t[0] + (window.column + window.width) * t[1], t[3] + window.row * t[5]};
        const auto differ = [](double a, double b, double cell) {
            return std::abs(a - b) > kSamePlace * cell;
        };
        const Rectangle& a = tile.placement;
        const Rectangle& b = tile.envelope;
        if (job_.clip && (differ(a.xMin, b.xMin, t[1]) || differ(a.xMax, b.xMax, t[1]) ||
                          differ(a.yMin, b.yMin, -t[5]) || differ(a.yMax, b.yMax, -t[5]))) {
            ++shifted_;
        }
    }

    void KeepLeftovers(const CellRecord& cell) {
        for (const utility::WrittenImage& image : cell.images) {
            std::string name = FileNameOf(image.path);
            std::error_code missing;
            if (name != cell.tile && fs::is_regular_file(fs::path(summary_.outdir) / name, missing))
                summary_.leftovers.push_back(std::move(name));
        }
    }

    void AddProducts(const LayerFacts& facts, DraftSet& drafts) {
        Products products = WriteProducts(job_, facts, summary_.outdir, tiles_, summary_.leftovers, drafts);
        for (std::string& notice : products.notices) summary_.notices.push_back(std::move(notice));
        for (std::string& error : products.errors) summary_.errors.push_back(std::move(error));
        summary_.index = products.index;
        summary_.vrt = products.vrt;
        summary_.preview = products.preview;
    }

    const RasterJob& job_;
    const Callbacks& callbacks_;
    std::shared_ptr<gdal::RasterLayer> layer_;
    Grid grid_;
    RasterSummary summary_;
    std::vector<PlacedTile> tiles_;
    int shifted_ = 0;  ///< tiles whose pixels do not fill exactly their envelope
};

}  // namespace

RasterSummary CutRaster(const RasterJob& job, const Callbacks& callbacks) {
    return RasterRun(job, callbacks).Run();
}

}  // namespace orvo::tiling
