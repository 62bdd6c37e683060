// A vector run, from the opened layer to the summary.
#include <ogr_feature.h>

#include <filesystem>
#include <memory>

#include "platform/FailureInFlight.h"
#include "platform/gdal/Attributes.h"
#include "tiling/Errors.h"
#include "tiling/WatchedPlatform.h"
#include "tiling/output/OutputFolder.h"
#include "tiling/output/PreviewPage.h"
#include "tiling/output/Publish.h"
#include "tiling/output/ReferenceSystem.h"
#include "tiling/output/TileIndex.h"
#include "tiling/output/WorkFolder.h"
#include "tiling/vector/FeatureIntake.h"
#include "tiling/vector/VectorJob.h"
#include "tiling/vector/VectorLayerSource.h"

namespace orvo::tiling {
namespace {

constexpr std::size_t kSpoolMemory = std::size_t{128} << 20U;
constexpr std::size_t kMostDrawn = 150000;  ///< vertices in the preview

/// Progress in hundredths: the first half is reading, the second writing.
class TwoPhaseProgress {
  public:
    enum Phase { kReading, kWriting };

    explicit TwoPhaseProgress(IProgress* display) : display_(display) {
        if (display_ != nullptr) display_->Start(100);
    }
    void Reach(Phase phase, std::int64_t done, std::int64_t of) {
        const std::int64_t target =
            std::int64_t{50} * phase + (of > 0 ? std::min<std::int64_t>(50 * done / of, 50) : 0);
        for (; shown_ < target; ++shown_) {
            if (display_ != nullptr) display_->Step();
        }
    }
    ~TwoPhaseProgress() {
        if (display_ != nullptr) display_->End();
    }
    TwoPhaseProgress(const TwoPhaseProgress&) = delete;
    TwoPhaseProgress& operator=(const TwoPhaseProgress&) = delete;

  private:
    IProgress* display_;
    std::int64_t shown_ = 0;
};

class VectorRun {
  public:
    VectorRun(const VectorJob& job, const Callbacks& callbacks)
        : job_(job), callbacks_(callbacks), watched_(callbacks.interrupted, EventsOfRun()) {}

    VectorSummary Run() {
        layer_ = OpenLayer(job_);
        OutputFolder folder(job_.outdir);
        folder.CheckEarlier(job_.overwrite ? Earlier::Remove : Earlier::Refuse, layer_->Files(), JobAsJson());
        grid_ = std::make_unique<VectorGrid>(layer_, job_.sizes, job_.prefix);
        summary_.input = job_.input;
        summary_.layer = layer_->Name();
        summary_.outdir = folder.Path();
        summary_.grid = grid_->Plan();
        PrepareWriter();
        folder.Prepare();
        try {
            Cut(folder.Path());
            AddProducts(folder.Path());
        } catch (...) {
            Finish(folder);
            throw;
        }
        Finish(folder);
        summary_.shown = watched_.Shown();
        summary_.interrupted = callbacks_.interrupted();
        return std::move(summary_);
    }

  private:
    /// What no index names stands in the journal.
    void Finish(OutputFolder& folder) {
        drafts_.reset();
        spool_.reset();
        const bool unnamed = summary_.index.empty() && summary_.written > 0;
        if (unnamed) work_->Keep();
        work_.reset();
        if (summary_.index.empty() && !unnamed) folder.RemoveJob();
        folder.RemoveIfUnused();
    }

    Json JobAsJson() const {
        const TileSizes& sizes = job_.sizes;
        return {{"generator", kGenerator},
                {"command", "vector"},
                {"program", job_.program},
                {"inputs", {job_.input}},
                {"options",
                 {{"layer", job_.layer},
                  {"tile_width", sizes.width},
                  {"tile_height", sizes.height},
                  {"columns", sizes.columns},
                  {"rows", sizes.rows},
                  {"id", job_.prefix},
                  {"format", job_.format},
                  {"strict", job_.strict},
                  {"preview", job_.preview}}}};
    }

    WatchedPlatform::Events EventsOfRun() {
        WatchedPlatform::Events events;
        events.onFailureShown = [this](const std::string& failure) {
            if (intake_) intake_->AddFailure(failure);
        };
        return events;
    }

    void PrepareWriter() {
        const ReferenceSystem system = NameReferenceSystem(layer_->SpatialReference());
        if (!system.notice.empty()) summary_.notices.push_back(system.notice);
        system_ = system.name;
        const auto free = [&](const char* name) {
            std::string found = gdal::FreeFieldName(layer_->Definition(), name);
            if (found != name)
                summary_.notices.push_back("the layer has a field \"" + std::string(name) +
                                           "\": ours is called \"" + found + "\"");
            return found;
        };
        added_ = {free("source_fid"), free("tile"), free("reason")};
        writer_ = MakePieceWriter(job_.format, *layer_, added_, system_);
        if (layer_->Definition().GetGeomFieldCount() > 1)
            summary_.notices.emplace_back(
                "the layer has several columns of geometries: the first one is cut");
        const GridPlan& plan = grid_->Plan();
        if (plan.emptyColumns > 0 || plan.emptyRows > 0) {
            summary_.notices.push_back("beyond the layer lie columns: " + std::to_string(plan.emptyColumns) +
                                       ", rows: " + std::to_string(plan.emptyRows) +
                                       "; a tile's size goes up to whole map units");
        }
    }

    void Cut(const std::string& folder) {
        work_ = std::make_unique<WorkFolder>(folder);
        WorkFolder& work = *work_;
        spool_ = std::make_unique<TileSpool>(work.Path(), kSpoolMemory);
        if (job_.preview) sketch_ = std::make_unique<VectorSketch>(grid_->Whole(), kMostDrawn);
        intake_ = std::make_unique<FeatureIntake>(*layer_, *grid_, job_.strict, added_,
                                                  FeatureIntake::Targets{*writer_, *spool_, sketch_.get()});
        const GridPlan& plan = grid_->Plan();
        callbacks_.notice("cutting the layer " + layer_->Name() + " into " + std::to_string(plan.columns) +
                          " x " + std::to_string(plan.rows) + " tiles of " + std::to_string(plan.width) +
                          " x " + std::to_string(plan.height) + " map units");
        TwoPhaseProgress progress(callbacks_.progress);
        ReadFeatures(progress);
        writer_->CheckRecords();
        writer_->Prepare(work.Path());
        work.Clear();
        WriteTiles(work, folder, progress);
        for (std::string& notice : writer_->Notices()) summary_.notices.push_back(std::move(notice));
    }

    void ReadFeatures(TwoPhaseProgress& progress) {
        const std::int64_t count = layer_->FeatureCount();
        intake_->Read(callbacks_.interrupted,
                      [&](std::int64_t done) { progress.Reach(TwoPhaseProgress::kReading, done, count); });
        intake_->Report(summary_);
    }

    void WriteTiles(WorkFolder& work, const std::string& folder, TwoPhaseProgress& progress) {
        const auto counts = spool_->Counts();
        summary_.occupied = static_cast<std::int64_t>(counts.size() - counts.count(kSkippedRecords));
        Try([&] { ReserveIndex(folder); });
        if (!drafts_) return;
        std::int64_t done = 0;
        for (const auto& [number, pieces] : counts) {
            if (number == kSkippedRecords) continue;
            if (callbacks_.interrupted()) continue;
            WriteTile(work, number, pieces);
            progress.Reach(TwoPhaseProgress::kWriting, ++done, static_cast<std::int64_t>(counts.size()));
        }
    }

    void ReserveIndex(const std::string& folder) {
        constexpr std::size_t kFiles = 8, kName = 24;  // at most, of one tile
        drafts_ = std::make_unique<DraftSet>(
            folder, IndexRoom(summary_.occupied, system_, kFiles * (job_.prefix.size() + kName)));
    }

    void WriteTile(WorkFolder& work, std::int64_t number, std::int64_t pieces) {
        const Long column = static_cast<Long>(number % grid_->Plan().columns) + 1;
        const Long row = static_cast<Long>(number / grid_->Plan().columns) + 1;
        const std::string id = grid_->NameOf(column, row);
        const std::string name = id + "." + writer_->Extension();
        try {
            writer_->Write(work.Path() + "/" + name, id,
                           [&](const auto& take) { spool_->Read(number, take); });
            for (std::string& companion : work.PublishAll(name, writer_->WritesSideFiles()))
                companions_.push_back(std::move(companion));
        } catch (...) {
            work.Clear();
            summary_.failures.push_back({id, work.WithoutPath(FailureInFlight().Description())});
            return;
        }
        const geos::Bounds b = grid_->BoundsOf(column, row);
        const Rectangle place{b.xMin, b.yMin, b.xMax, b.yMax};
        const std::int64_t rowFromTop = grid_->Plan().rows - row + 1;
        tiles_.push_back({name, column, rowFromTop, place, place, 0, 0, id, column, row});
        pieces_.emplace(name, pieces);
    }

    template <class Step>
    void Try(Step&& step) {
        try {
            step();
        } catch (...) {
            summary_.errors.push_back(FailureInFlight().Description());
        }
    }

    void AddProducts(const std::string& folder) {
        CountTiles(folder);
        if (!drafts_ || (tiles_.empty() && summary_.Skipped() == 0)) return;
        Try([&] { AddSkipped(folder); });
        Try([&] { AddPage(); });
        Try([&] {
            summary_.index = drafts_->Publish([&](const std::vector<std::string>& names) {
                std::vector<std::string> companions = companions_;
                companions.insert(companions.end(), names.begin(), names.end());
                return IndexText(TilesThere(), system_, companions);
            });
        });
        const auto& errors = drafts_->Errors();
        summary_.errors.insert(summary_.errors.end(), errors.begin(), errors.end());
        summary_.skippedFile = drafts_->PathOf("skipped");
        summary_.preview = drafts_->PathOf("index");
    }

    /// Counts the tiles, but for those that somebody has removed.
    void CountTiles(const std::string& folder) {
        std::erase_if(tiles_, [&](const PlacedTile& tile) {
            std::error_code missing;
            if (std::filesystem::is_regular_file(folder + "/" + tile.name, missing)) {
                ++summary_.written;
                summary_.pieces += pieces_.at(tile.name);
                return false;
            }
            summary_.failures.push_back({tile.id, "the tile " + tile.name + " has vanished"});
            return true;
        });
    }

    TileList TilesThere() const {
        return [this](const auto& take) {
            for (const PlacedTile& tile : tiles_) take(tile);
        };
    }

    void AddSkipped(const std::string& folder) {
        if (summary_.Skipped() == 0) return;
        auto draft = std::make_unique<DraftFile>(folder, ".geojson");
        WriteFeatures(draft->Path(), "skipped", system_,
                      [&](const auto& take) { spool_->Read(kSkippedRecords, take); });
        drafts_->Add("skipped", ".geojson", std::move(draft));
    }

    void AddPage() {
        if (!sketch_ || tiles_.empty()) return;
        drafts_->Add("index", ".html", PreviewPage(layer_->Name(), TilesThere(), sketch_->ToJson()));
    }

    const VectorJob& job_;
    const Callbacks& callbacks_;
    std::shared_ptr<gdal::VectorLayer> layer_;
    std::unique_ptr<VectorGrid> grid_;
    AddedFields added_;
    std::string system_;
    std::unique_ptr<PieceWriter> writer_;
    std::unique_ptr<WorkFolder> work_;
    std::unique_ptr<TileSpool> spool_;
    std::unique_ptr<DraftSet> drafts_;
    std::vector<PlacedTile> tiles_;
    std::map<std::string, std::int64_t> pieces_;  ///< by a tile's name
    std::vector<std::string> companions_;
    VectorSummary summary_;
    std::unique_ptr<VectorSketch> sketch_;
    std::unique_ptr<FeatureIntake> intake_;
    WatchedPlatform watched_;
};

}  // namespace

VectorSummary CutVector(const VectorJob& job, const Callbacks& callbacks) {
    return VectorRun(job, callbacks).Run();
}

}  // namespace orvo::tiling
