// A vector run, from the opened layer to the summary.
#include <algorithm>
#include <filesystem>
#include <memory>

#include "platform/FailureInFlight.h"
#include "tiling/Errors.h"
#include "tiling/WatchedPlatform.h"
#include "tiling/output/OutputFolder.h"
#include "tiling/output/PartRecords.h"
#include "tiling/output/PreviewPage.h"
#include "tiling/output/Publish.h"
#include "tiling/output/TileIndex.h"
#include "tiling/output/WorkFolder.h"
#include "tiling/vector/FeatureIntake.h"
#include "tiling/vector/TileFiles.h"
#include "tiling/vector/VectorJob.h"
#include "tiling/vector/VectorParts.h"
#include "tiling/vector/VectorPlan.h"

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

Earlier EarlierOf(const VectorJob& job) {
    if (job.part.parts > 0) return Earlier::Part;
    return job.overwrite ? Earlier::Remove : job.resume ? Earlier::Resume : Earlier::Refuse;
}

class VectorRun {
  public:
    /// @param records of the parts that are put together, in place of cutting; null for none
    VectorRun(const VectorJob& job, const Callbacks& callbacks, const PartRecords* records = nullptr)
        : job_(job),
          callbacks_(callbacks),
          records_(records),
          watched_(callbacks.interrupted, EventsOfRun()),
          plan_(job),
          grid_(plan_.Grid()),
          tiles_(plan_.Grid(), plan_.Writer()) {}

    VectorSummary Run() {
        OutputFolder folder(job_.outdir);
        folder.CheckEarlier(records_ != nullptr ? Earlier::Merge : EarlierOf(job_), plan_.Layer().Files(),
                            plan_.JobAsJson(), part_);
        summary_.input = job_.input;
        summary_.layer = plan_.Layer().Name();
        summary_.outdir = folder.Path();
        summary_.grid = grid_.Plan();
        summary_.isPart = job_.part.parts > 0;
        summary_.notices = plan_.Notices();
        tiles_.Keep(folder.Prepare());
        try {
            if (records_ != nullptr) parts_.emplace(*records_, grid_, plan_.Writer(), tiles_, summary_);
            Work(folder.Path());
        } catch (...) {
            Finish(folder);
            throw;
        }
        Finish(folder);
        summary_.shown += watched_.Shown();
        summary_.interrupted = callbacks_.interrupted();
        return std::move(summary_);
    }

  private:
    /// What no index and no record names stands in the journal.
    void Finish(OutputFolder& folder) {
        drafts_.reset();
        spool_.reset();
        const bool isNamed = !summary_.index.empty() || isRecorded_;
        if (work_ && !isNamed && !tiles_.All().empty()) work_->Keep();
        const bool keepsJournal = work_ && work_->IsKept();
        work_.reset();
        if (!isNamed && !keepsJournal) folder.RemoveJob();
        if (records_ != nullptr && !summary_.index.empty()) folder.RemoveRecords(records_->Names());
        folder.RemoveIfUnused();
    }

    WatchedPlatform::Events EventsOfRun() {
        WatchedPlatform::Events events;
        events.onFailureShown = [this](const std::string& failure) {
            if (intake_) intake_->AddFailure(failure);
        };
        return events;
    }

    void Work(const std::string& folder) {
        work_ = std::make_unique<WorkFolder>(folder, part_);
        spool_ = std::make_unique<TileSpool>(work_->Path(), kSpoolMemory);
        if (job_.preview && job_.part.parts == 0)
            sketch_ = std::make_unique<VectorSketch>(grid_.Whole(), kMostDrawn);
        const GridPlan& plan = grid_.Plan();
        callbacks_.notice((records_ != nullptr ? "merging the tiles of the layer " : "cutting the layer ") +
                          summary_.layer + (records_ != nullptr ? ", " : " into ") +
                          std::to_string(plan.columns) + " x " + std::to_string(plan.rows) + " tiles of " +
                          std::to_string(plan.width) + " x " + std::to_string(plan.height) + " map units");
        TwoPhaseProgress progress(callbacks_.progress);
        const bool isWhole = ReadFeatures(progress);
        if (records_ == nullptr) {
            WriteTiles(folder, progress);
        } else {
            summary_.occupied = static_cast<std::int64_t>(tiles_.All().size());
            Try([&] { ReserveIndex(folder); });
        }
        for (std::string& notice : plan_.Writer().Notices()) summary_.notices.push_back(std::move(notice));
        CountTiles(folder);
        if (job_.part.parts == 0)
            AddProducts(folder);
        else if (isWhole)
            WriteRecord(folder);
    }

    /// @return whether it came to its end
    bool ReadFeatures(TwoPhaseProgress& progress) {
        GeometryCutter cutter(grid_, job_.strict, [this](Long column, Long row, const geos::Geometry& piece) {
            const std::int64_t number = std::int64_t{row - 1} * grid_.Plan().columns + column - 1;
            spool_->Add(number, plan_.Writer().Record(grid_.NameOf(column, row), piece));
        });
        const auto place = [&](const IncomingFeature::Part& part) {
            return parts_ ? parts_->Next() : Cut(cutter, part);
        };
        const bool cuts = records_ == nullptr;
        intake_ = std::make_unique<FeatureIntake>(
            plan_.Layer(), grid_, plan_.Added(),
            FeatureIntake::Targets{cuts ? &plan_.Writer() : nullptr, *spool_, sketch_.get(),
                                   job_.part.parts > 0 ? &placements_ : nullptr},
            place);
        const std::int64_t count = plan_.Layer().FeatureCount();
        // Nothing is foretold where nothing is cut.
        const bool isWhole = intake_->Read(
            cuts ? job_.jobs : 1, callbacks_.interrupted,
            [&](std::int64_t done) { progress.Reach(TwoPhaseProgress::kReading, done, count); });
        if (cuts) summary_.coveredLeftOut = cutter.CoveredLeftOut();
        intake_->Report(summary_);
        return isWhole;
    }

    static Placement Cut(GeometryCutter& cutter, const IncomingFeature::Part& part) {
        const std::int64_t before = cutter.CoveredLeftOut();
        Placement placement;
        try {
            cutter.Cut(part.geometry, part.foretold);
            placement.failure = cutter.Refusal();
        } catch (const RuntimeError& error) {
            placement.failure = error.Description();
        }
        placement.isPlaced = cutter.Placed() > 0;
        placement.isLeftOut = cutter.CoveredLeftOut() > before;
        return placement;
    }

    void WriteTiles(const std::string& folder, TwoPhaseProgress& progress) {
        PieceWriter& writer = plan_.Writer();
        writer.CheckRecords();
        writer.Prepare(work_->Path());
        work_->Clear();
        const auto counts = spool_->Counts();
        summary_.occupied = static_cast<std::int64_t>(counts.size() - counts.count(kSkippedRecords));
        if (job_.part.parts == 0) Try([&] { ReserveIndex(folder); });
        const bool hasRoom = job_.part.parts > 0 || drafts_;
        std::int64_t done = 0;
        for (const auto& [number, pieces] : counts) {
            if (number == kSkippedRecords) continue;
            missing_.push_back(number);
            if (!hasRoom || callbacks_.interrupted()) continue;
            std::string failure = tiles_.Write(
                number, pieces, [&, n = number](const auto& take) { spool_->Read(n, take); }, *work_);
            if (failure.empty())
                missing_.pop_back();
            else
                summary_.failures.push_back({IdOf(number), std::move(failure)});
            progress.Reach(TwoPhaseProgress::kWriting, ++done, static_cast<std::int64_t>(counts.size()));
        }
    }

    std::string IdOf(std::int64_t number) const {
        const std::string name = tiles_.NameOf(number);
        return name.substr(0, name.rfind('.'));
    }

    void ReserveIndex(const std::string& folder) {
        constexpr std::size_t kFiles = 8, kName = 24;  // at most, of one tile
        drafts_ = std::make_unique<DraftSet>(
            folder, IndexRoom(summary_.occupied, plan_.System(), kFiles * (job_.prefix.size() + kName)));
    }

    template <class Step>
    void Try(Step&& step) {
        try {
            step();
        } catch (...) {
            summary_.errors.push_back(FailureInFlight().Description());
        }
    }

    /// Counts the tiles, but for those that somebody has removed.
    void CountTiles(const std::string& folder) {
        for (const std::int64_t number : tiles_.Vanished(folder)) {
            missing_.push_back(number);
            summary_.failures.push_back(
                {IdOf(number), "the tile " + tiles_.NameOf(number) + " has vanished"});
        }
        summary_.written = static_cast<std::int64_t>(tiles_.All().size());
        for (const auto& [number, entry] : tiles_.All()) summary_.pieces += entry.pieces;
    }

    void WriteRecord(const std::string& folder) {
        const Json record = VectorPartRecord(PartHead(part_, job_.command), tiles_, missing_, placements_,
                                             summary_, plan_.Writer().Findings());
        const std::string path = folder + "/" + PartRecordName(part_);
        const auto failed = files::WriteWhole(path, TextOf(record) + "\n");
        if (failed) summary_.errors.push_back("cannot write \"" + path + "\": " + failed.message());
        isRecorded_ = !failed;
    }

    void AddProducts(const std::string& folder) {
        if (!drafts_ || (tiles_.All().empty() && summary_.Skipped() == 0)) return;
        Try([&] { AddSkipped(folder); });
        Try([&] { AddPage(); });
        Try([&] {
            summary_.index = drafts_->Publish([&](const std::vector<std::string>& names) {
                std::vector<std::string> companions = tiles_.Companions();
                companions.insert(companions.end(), names.begin(), names.end());
                return IndexText(tiles_.List(), plan_.System(), companions);
            });
        });
        const auto& errors = drafts_->Errors();
        summary_.errors.insert(summary_.errors.end(), errors.begin(), errors.end());
        summary_.skippedFile = drafts_->PathOf("skipped");
        summary_.preview = drafts_->PathOf("index");
    }

    void AddSkipped(const std::string& folder) {
        if (summary_.Skipped() == 0) return;
        auto draft = std::make_unique<DraftFile>(folder, ".geojson");
        WriteFeatures(draft->Path(), "skipped", plan_.System(),
                      [&](const auto& take) { spool_->Read(kSkippedRecords, take); });
        drafts_->Add("skipped", ".geojson", std::move(draft));
    }

    void AddPage() {
        if (!sketch_ || tiles_.All().empty()) return;
        drafts_->Add("index", ".html", PreviewPage(summary_.layer, tiles_.List(), sketch_->ToJson()));
    }

    const VectorJob& job_;
    const Callbacks& callbacks_;
    const PartRecords* records_;
    const PartNumber part_ = job_.part;
    std::unique_ptr<FeatureIntake> intake_;
    WatchedPlatform watched_;
    VectorPlan plan_;
    VectorGrid& grid_;
    TileFiles tiles_;
    VectorSummary summary_;
    std::optional<VectorParts> parts_;
    std::unique_ptr<WorkFolder> work_;
    std::unique_ptr<TileSpool> spool_;
    std::unique_ptr<DraftSet> drafts_;
    std::unique_ptr<VectorSketch> sketch_;
    Placements placements_;              ///< in a part of the grid
    std::vector<std::int64_t> missing_;  ///< numbers of tiles with pieces that are not there
    bool isRecorded_ = false;
};

}  // namespace

VectorSummary CutVector(const VectorJob& job, const Callbacks& callbacks) {
    return VectorRun(job, callbacks).Run();
}

VectorSummary MergeVector(const std::string& outdir, const Callbacks& callbacks) {
    const std::string path = OutputFolder(outdir).Path();
    VectorJob job = VectorJobFromJson(JobIn(path));
    job.outdir = outdir;
    const PartRecords records(path);
    return VectorRun(job, callbacks, &records).Run();
}

}  // namespace orvo::tiling
