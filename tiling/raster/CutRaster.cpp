// A raster run, from the opened source to the summary.
#include <filesystem>
#include <memory>
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
#include "tiling/output/WorkFolder.h"
#include "tiling/output/WorldFile.h"
#include "tiling/raster/CellPlan.h"
#include "tiling/raster/PartRecord.h"
#include "tiling/raster/Products.h"
#include "tiling/raster/RasterJob.h"
#include "tiling/raster/RasterPlan.h"
#include "tiling/raster/TileLedger.h"
#include "tiling/raster/TileService.h"
#include "tiling/raster/TilesAhead.h"

namespace fs = std::filesystem;

namespace orvo::tiling {
namespace {

using State = TileAccount::State;

std::string Joined(const std::vector<std::string>& reasons) {
    std::string text;
    std::string last;
    for (const std::string& reason : reasons) {
        if (reason != last) text += (text.empty() ? "" : "; then: ") + reason;
        last = reason;
    }
    return text.empty() ? "no reason was given" : text;
}

/// Hears the steps of one block and passes them on as those of the run.
class BlockProgress final : public IProgress {
  public:
    explicit BlockProgress(IProgress* run) : run_(run) {}
    void Start(std::int64_t) override {}
    void Step() override {
        if (run_ != nullptr) run_->Step();
    }
    void Note(const std::string& text) override {
        if (run_ != nullptr) run_->Note(text);
    }
    void End() override {}

  private:
    IProgress* run_;
};

Earlier EarlierOf(const RasterJob& job) {
    if (job.part.parts > 0) return Earlier::Part;
    return job.overwrite ? Earlier::Remove : job.resume ? Earlier::Resume : Earlier::Refuse;
}

/// Writes a file's name and nothing in it. Fails with RunError.
void MakeEmptyFile(const std::string& path) {
    if (const auto failed = files::WriteWhole(path, ""))
        throw RunError("cannot write \"" + path + "\": " + failed.message());
}

class RasterRun {
  public:
    /// @param parts whose tiles are put together, in place of being cut; null for none
    RasterRun(const RasterJob& job, const Callbacks& callbacks, const PartRecords* parts = nullptr)
        : job_(job), callbacks_(callbacks), parts_(parts), plan_(job) {}

    RasterSummary Run() {
        OutputFolder folder(job_.outdir);
        folder.CheckEarlier(parts_ != nullptr ? Earlier::Merge : EarlierOf(job_), plan_.SourceFiles(),
                            plan_.JobAsJson(), part_);
        summary_.input = job_.inputs.front();
        summary_.inputs = job_.inputs;
        summary_.outdir = folder.Path();
        summary_.notices = plan_.Notices();
        const LayerFacts facts(plan_.Layer());
        plan_.Account().Keep(folder.Prepare());
        try {
            CutAndPublish(facts);
        } catch (...) {
            folder.RemoveJob();
            folder.RemoveIfUnused();
            throw;
        }
        if (summary_.LeavesNothing() && !keepsJournal_) {
            folder.RemoveJob();
            folder.RemoveIfUnused();
        }
        if (parts_ != nullptr && !summary_.index.empty()) folder.RemoveRecords(parts_->Names());
        summary_.interrupted = callbacks_.interrupted();
        return std::move(summary_);
    }

  private:
    void CutAndPublish(const LayerFacts& facts) {
        constexpr std::size_t kFiles = 4;  // of a tile, usually at most
        std::unique_ptr<DraftSet> drafts;
        try {
            if (parts_ != nullptr) stretch_ = AddParts(*parts_, account_, summary_);
            work_ = std::make_unique<WorkFolder>(summary_.outdir, part_);
            const std::size_t name = account_.NameOf(account_.Count() - 1).size() + 16;
            if (job_.part.parts == 0)
                drafts = std::make_unique<DraftSet>(
                    summary_.outdir, IndexRoom(account_.Count(), facts.system.name, kFiles * name));
            if (parts_ == nullptr) CutBlocks();
        } catch (const RunError& error) {
            if (parts_ != nullptr) throw;
            summary_.errors.emplace_back(error.what());
        }
        Collect();
        if (drafts) AddProducts(facts, *drafts);
        if (job_.part.parts > 0) WriteRecord();
        const bool named = !summary_.index.empty() || recorded_;
        if (summary_.written > 0 && !named && work_) work_->Keep();
        keepsJournal_ = work_ && work_->IsKept();
        work_.reset();
    }

    void WriteRecord() {
        const std::string stretch = summary_.written > 0 ? plan_.Maker().StretchSaid() : "";
        const Json record = PartRecord(part_, job_.command, account_, summary_, stretch);
        const std::string path = summary_.outdir + "/" + PartRecordName(part_);
        const auto failed = files::WriteWhole(path, TextOf(record, 1) + "\n");
        if (failed) summary_.errors.push_back("cannot write \"" + path + "\": " + failed.message());
        recorded_ = !failed;
    }

    void CutBlocks() {
        const RasterGrid& grid = plan_.Grid();
        const CellRange& visited = grid.Visited();
        callbacks_.notice("cutting " + FileNameOf(job_.inputs.front()) + " (" +
                          std::to_string(grid.LayerWidth()) + " x " + std::to_string(grid.LayerHeight()) +
                          " pixels) into " + std::to_string(visited.columns) + " x " +
                          std::to_string(visited.rows) + " tiles of " + std::to_string(grid.TileWidth()) +
                          " x " + std::to_string(grid.TileHeight()) + " pixels");
        // With a converter the component cuts windows for it; else it exports.
        source_ = work_->Path() + (job_.converter.empty() ? "/layer" : "/layer.tif");
        MakeEmptyFile(source_);
        if (callbacks_.progress != nullptr) callbacks_.progress->Start(account_.Count());
        for (const CellRange& block : grid.Blocks()) {
            if (IsThere(block)) {
                for (std::int64_t i = 0; i < block.Count(); ++i) progress_.Step();
            } else if (!CutBlock(block)) {
                break;
            }
        }
        if (callbacks_.progress != nullptr) callbacks_.progress->End();
    }

    std::int64_t TileOf(const CellRange& block, std::int64_t cell) const {
        const std::int64_t inside = std::min(cell, block.Count() - 1);
        return account_.NumberOf(block.column + inside % block.columns, block.row + inside / block.columns);
    }

    /// What a clipped tile shows is known once the component has asked for it.
    bool IsThere(const CellRange& block) const {
        if (job_.clip) return false;
        for (std::int64_t cell = 0; cell < block.Count(); ++cell) {
            if (account_.StateOf(TileOf(block, cell)) != State::Written) return false;
        }
        return true;
    }

    /// @return whether the run goes on
    bool CutBlock(const CellRange& cells) {
        const auto layer = std::make_shared<BlockLayer>(plan_.Grid(), cells, source_);
        plan_.Maker().Enter(*layer);
        std::optional<Rectangle> clip;
        if (job_.clip) clip = layer->PartOf(plan_.Grid().PixelsOf(*job_.clip));
        const CellPlan plan(*layer, clip);
        TileLedger ledger(plan, &progress_, [&](std::int64_t cell, CellRecord& record) {
            Publish(TileOf(cells, cell), record);
        });
        const BlockInWork block{*layer, ledger, [&](std::int64_t cell) { return TileOf(cells, cell); }};
        TilesAhead ahead(block, plan, plan_.Maker(), account_, job_, callbacks_, source_, work_->Path());
        const WatchedPlatform watched(callbacks_.interrupted, EventsOf(block, ahead));
        const bool goesOn = RunComponent(*layer, clip, ledger);
        summary_.shown += watched.Shown();
        CollectBlock(cells, plan, ledger);
        return goesOn;
    }

    bool RunComponent(BlockLayer& layer, const std::optional<Rectangle>& clip, TileLedger& ledger) {
        clsTileImage tiler;
        tiler.ImageLayer(layer.shared_from_this());
        tiler.TileWidth(layer.SizeAcross());
        tiler.TileHeight(layer.SizeDown());
        tiler.GraphicFormat(plan_.Maker().WrittenExtension());
        tiler.GraphicQuality(job_.quality);
        tiler.GraphicConvertProg(job_.converter);
        if (clip) tiler.ClipEnvelope(EnvelopeOf(*clip));
        tiler.SavePath(work_->Path());
        tiler.StatusObject(std::shared_ptr<IStatusDisplay>(&ledger, [](IStatusDisplay*) {}));
        ledger.Watch(tiler.TileObjectDict());
        bool done = false;
        try {
            done = tiler.Tile();
        } catch (...) {
            // The error dialog itself failed, as where its log cannot be written; what is there stays.
            if (!callbacks_.interrupted()) ledger.AddReason(PlainReason(FailureInFlight().Description(), ""));
        }
        ledger.Finish();
        return done && !callbacks_.interrupted();
    }

    WatchedPlatform::Events EventsOf(const BlockInWork& block, TilesAhead& ahead) {
        WatchedPlatform::Events events;
        TileLedger& ledger = block.ledger;
        events.onFailureShown = [&ledger](const std::string& failure) {
            ledger.AddReason(PlainReason(failure, ""));
        };
        events.onNewEnvelope = [&ledger] { ledger.AddEnvelope(); };
        events.services.onFailure = [&ledger](const utility::Request& asked, const std::string& reason) {
            ledger.AddFailure(asked, PlainReason(reason, asked.target));
        };
        events.services.onWritten = [&ledger](const utility::WrittenImage& image) { ledger.AddImage(image); };
        events.named = [this](std::shared_ptr<IUtilTools> inner) {
            return std::make_shared<OwnNames>(std::move(inner), names_);
        };
        events.newRasterIO = [this] { return plan_.SharedMaker(); };
        events.served = [this, &block, &ahead](std::shared_ptr<IRasterConvert> inner) {
            return std::make_shared<TileService>(std::move(inner), block, plan_.Maker(), account_, ahead,
                                                 job_.skipBlank);
        };
        return events;
    }

    /// The component has recorded a tile: it gets its own name.
    void Publish(std::int64_t tile, CellRecord& record) {
        if (account_.StateOf(tile) == State::Written) return;  // of an earlier run
        const std::string image = work_->Path() + "/" + record.tile;
        try {
            const MadeTile made = plan_.Maker().Take(image);
            account_.Place(tile, made.window);
            account_.Publish(tile, image, made, *work_, PlaceFiles(tile));
        } catch (const std::exception& error) {
            record.reasons.push_back(PlainReason(error.what(), image));
            Remove(image);
        }
    }

    static void Remove(const std::string& path) {
        std::error_code ignored;
        fs::remove(path, ignored);
    }

    /// By what stands behind the stem of the tile's name.
    std::vector<gdal::MadeFile> PlaceFiles(std::int64_t tile) const {
        if (!job_.worldFiles) return {};
        const PlacedTile placed = account_.TileAt(tile);
        const std::string& extension = plan_.Maker().Extension();
        std::vector<gdal::MadeFile> files{{WorldFileName("." + extension), WorldFileText(placed)}};
        if (plan_.Maker().NeedsPlace())
            files.push_back({"." + extension + ".aux.xml", PlaceText(placed, wkt_)});
        return files;
    }

    /// Sorts the cells that are not there into failed, blank and outside; whatever the walk did not come to
    /// was not reached.
    void CollectBlock(const CellRange& cells, const CellPlan& plan, const TileLedger& ledger) {
        const auto& early = ledger.EarlyReasons();
        summary_.errors.insert(summary_.errors.end(), early.begin(), early.end());
        const auto& records = ledger.Cells();
        for (std::size_t i = 0; i < records.size(); ++i) {
            const CellRecord& record = records[i];
            const auto cell = static_cast<std::int64_t>(i);
            const std::int64_t tile = TileOf(cells, cell);
            const bool last = callbacks_.interrupted() && i + 1 == records.size();
            const State state = account_.StateOf(tile);
            if (state == State::Written && !record.reasons.empty()) {
                summary_.recoveries.push_back(Joined(record.reasons));
            } else if (state == State::NotReached && (plan.At(cell).inside || !record.reasons.empty())) {
                if (!last || !record.reasons.empty()) AddFailure(tile, Joined(record.reasons));
            } else if (state == State::NotReached && !last) {
                account_.Set(tile, State::Outside);
            }
            if (!last) KeepLeftovers(tile, record);
        }
    }

    void AddFailure(std::int64_t tile, std::string reason) {
        account_.Set(tile, State::Failed);
        summary_.failures.push_back({account_.ColumnOf(tile), account_.RowOf(tile), std::move(reason)});
    }

    /// An exported TIFF that could not be converted is kept under its tile's name, unless that is what the
    /// tile itself is called, or an empty file stands for it.
    void KeepLeftovers(std::int64_t tile, const CellRecord& record) {
        for (const utility::WrittenImage& image : record.images) {
            std::error_code missing;
            if (!image.extent || !fs::is_regular_file(image.path, missing)) continue;
            const std::string name = account_.StemOf(tile) + ".tif";
            if (name == account_.NameOf(tile) || fs::file_size(image.path, missing) == 0) {
                Remove(image.path);
                continue;
            }
            try {
                work_->Publish({image.path}, {name});
                summary_.leftovers.push_back(name);
            } catch (const RunError&) {
                Remove(image.path);
            }
        }
    }

    void Collect() {
        for (const std::int64_t tile : account_.Vanished(summary_.outdir))
            AddFailure(tile, "the tile " + account_.NameOf(tile) + " has vanished");
        summary_.expected = account_.Count();
        summary_.written = account_.CountOf(State::Written);
        summary_.blank = account_.CountOf(State::Blank);
        summary_.outside = account_.CountOf(State::Outside);
        const auto say = [&](const std::string& notice) {
            if (!notice.empty()) summary_.notices.push_back(notice);
        };
        if (parts_ != nullptr)
            say(stretch_);
        else if (summary_.written > 0)
            say(plan_.Maker().StretchSaid());
        if (const std::int64_t shifted = account_.Shifted(); shifted > 0) {
            say(std::to_string(shifted) +
                " clipped tiles do not fill their rectangles in the index exactly: they are cut in whole "
                "pixels, where a fraction goes up and an odd number gains one; world files and preview show "
                "where they lie");
        }
        if (const std::int64_t resampled = account_.Resampled(); resampled > 0) {
            say(std::to_string(resampled) +
                " clipped tiles are resampled to the full size of a tile; a --clip along the tiles' edges "
                "keeps "
                "their pixels");
        }
        if (!summary_.leftovers.empty())
            say(std::to_string(summary_.leftovers.size()) +
                " exported TIFFs that could not be converted are kept in the folder");
    }

    void AddProducts(const LayerFacts& facts, DraftSet& drafts) {
        if (summary_.written == 0 && summary_.leftovers.empty()) return;
        std::vector<std::string> companions = account_.Companions();
        companions.insert(companions.end(), summary_.leftovers.begin(), summary_.leftovers.end());
        Products products =
            WriteProducts(job_, facts, summary_.outdir, account_.Tiles(), std::move(companions), drafts);
        for (std::string& notice : products.notices) summary_.notices.push_back(std::move(notice));
        for (std::string& error : products.errors) summary_.errors.push_back(std::move(error));
        summary_.index = products.index;
        summary_.vrt = products.vrt;
        summary_.preview = products.preview;
    }

    const RasterJob& job_;
    const Callbacks& callbacks_;
    const PartRecords* parts_;
    const PartNumber part_ = job_.part;
    bool recorded_ = false;
    bool keepsJournal_ = false;  ///< and so the job
    RasterPlan plan_;
    TileAccount& account_ = plan_.Account();
    std::string wkt_ = plan_.Layer().SpatialReference();
    BlockProgress progress_{callbacks_.progress};
    std::int64_t names_ = 0;  ///< that the component was given
    std::unique_ptr<WorkFolder> work_;
    std::string source_;   ///< the file that the component believes to cut
    std::string stretch_;  ///< of the parts
    RasterSummary summary_;
};

}  // namespace

RasterSummary CutRaster(const RasterJob& job, const Callbacks& callbacks) {
    return RasterRun(job, callbacks).Run();
}

RasterSummary MergeRaster(const std::string& outdir, const Callbacks& callbacks) {
    const std::string path = OutputFolder(outdir).Path();
    RasterJob job = JobFromJson(JobIn(path));
    job.outdir = outdir;
    const PartRecords parts(path);
    return RasterRun(job, callbacks, &parts).Run();
}

std::string PlanOfRaster(const RasterJob& job) {
    OutputFolder folder(job.outdir);
    RasterPlan plan(job);
    folder.CheckEarlier(EarlierOf(job), plan.SourceFiles(), plan.JobAsJson(), job.part);
    return plan.AsJson(folder.Path());
}

}  // namespace orvo::tiling
