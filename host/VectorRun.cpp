// orvo-tile vector: the run from the opened layer to the summary.
#include <ogr_feature.h>

#include <iostream>
#include <memory>

#include "host/Errors.h"
#include "host/GeometryCutter.h"
#include "host/Interrupt.h"
#include "host/OutputFolder.h"
#include "host/PieceWriter.h"
#include "host/ProgressDisplay.h"
#include "host/Publish.h"
#include "host/ReferenceSystem.h"
#include "host/Session.h"
#include "host/TileIndex.h"
#include "host/TileSpool.h"
#include "host/VectorJob.h"
#include "host/VectorSummary.h"
#include "host/WorkFolder.h"
#include "platform/gdal/Attributes.h"
#include "platform/gdal/FeatureParts.h"
#include "platform/gdal/VectorLayer.h"

namespace orvo::host {
namespace {

constexpr std::size_t kSpoolMemory = std::size_t{128} << 20U;
constexpr std::int64_t kSkippedRecords = -1;  ///< the number under which skipped features stand in the spool

const char* const kCoveredOnly = "it covers whole tiles only, which --strict leaves out";
const char* const kNothing = "clipping gave nothing";

std::shared_ptr<gdal::VectorLayer> OpenLayer(const VectorJob& job) {
    try {
        return gdal::OpenVectorLayer(job.input, job.layer);
    } catch (const RuntimeError& error) {
        if (error.Number() == static_cast<Long>(Fault::InvalidProcedureCall)) throw UsageError(error.what());
        throw;
    }
}

/// Progress in hundredths: the first half is reading, the second writing.
class Halves {
  public:
    explicit Halves(ProgressDisplay& display) : display_(display) { display_.Start(100); }
    void Reach(int half, std::int64_t done, std::int64_t of) {
        const std::int64_t target = 50 * half + (of > 0 ? std::min<std::int64_t>(50 * done / of, 50) : 0);
        for (; shown_ < target; ++shown_) display_.Cell();
    }
    ~Halves() { display_.End(); }
    Halves(const Halves&) = delete;
    Halves& operator=(const Halves&) = delete;

  private:
    ProgressDisplay& display_;
    std::int64_t shown_ = 0;
};

class VectorRun {
  public:
    explicit VectorRun(const VectorJob& job) : job_(job), progress_(std::cerr, job.progress) {}

    int Run() {
        utility::Settings services;
        services.languageOffset = job_.languageOffset;
        const auto hear = [this](const std::string& failure) { failure_ = failure; };
        desktop_ = InstallPlatform(job_.onError, progress_, hear, std::move(services));
        layer_ = OpenLayer(job_);
        OutputFolder folder(job_.outdir);
        folder.CheckEarlier(job_.overwrite, {job_.input});
        grid_ = std::make_unique<VectorGrid>(layer_, job_.sizes, job_.prefix);
        PrepareWriter();
        folder.Prepare();
        try {
            Cut(folder.Path());
            AddProducts(folder.Path());
        } catch (...) {
            folder.RemoveIfUnused();
            throw;
        }
        folder.RemoveIfUnused();
        return Finish(folder.Path());
    }

  private:
    void PrepareWriter() {
        const ReferenceSystem system = NameReferenceSystem(layer_->SpatialReference());
        if (!system.notice.empty()) summary_.notices.push_back(system.notice);
        system_ = system.name;
        added_ = {gdal::FreeFieldName(layer_->Definition(), "source_fid"),
                  gdal::FreeFieldName(layer_->Definition(), "tile")};
        for (const std::string& name : {added_.id, added_.tile}) {
            if (name.find("_2") != std::string::npos || name.ends_with("_3"))
                summary_.notices.push_back("the layer has a field of that name already: ours is called \"" +
                                           name + "\"");
        }
        writer_ = MakePieceWriter(job_.format, *layer_, added_, system_);
        const GridPlan& plan = grid_->Plan();
        if (plan.emptyColumns > 0 || plan.emptyRows > 0) {
            summary_.notices.push_back(
                std::to_string(plan.emptyColumns) + " columns and " + std::to_string(plan.emptyRows) +
                " rows lie beyond the layer: a tile's size goes up to whole map units");
        }
    }

    void Cut(const std::string& folder) {
        const WorkFolder work(folder);
        spool_ = std::make_unique<TileSpool>(work.Path(), kSpoolMemory);
        const GridPlan& plan = grid_->Plan();
        if (!job_.quiet) {
            std::cerr << "orvo-tile: cutting the layer " << layer_->Name() << " into " << plan.columns
                      << " x " << plan.rows << " tiles of " << plan.width << " x " << plan.height
                      << " map units\n";
        }
        Halves halves(progress_);
        ReadFeatures(halves);
        writer_->CheckRecords();
        WriteTiles(work, folder, halves);
    }

    void ReadFeatures(Halves& halves) {
        const auto sink = [this](Long column, Long row, const geos::Geometry& piece) {
            const std::int64_t number = std::int64_t{row - 1} * grid_->Plan().columns + column - 1;
            spool_->Add(number, writer_->Record(grid_->NameOf(column, row), piece));
        };
        GeometryCutter cutter(*grid_, job_.strict, sink);
        const std::int64_t count = layer_->FeatureCount();
        try {
            while (!Interrupted()) {
                const auto feature = layer_->Next();
                if (!feature) break;
                ++summary_.featuresIn;
                Place(*feature, cutter);
                halves.Reach(0, summary_.featuresIn, count);
            }
        } catch (const RuntimeError& error) {
            summary_.errors.emplace_back(error.Description());
        }
        summary_.coveredLeftOut = cutter.CoveredLeftOut();
        AddNotices();
    }

    void Place(const OGRFeature& feature, GeometryCutter& cutter) {
        const gdal::FeatureParts parts = gdal::PartsOf(feature.GetGeometryRef());
        if (parts.wkb.empty()) return Skip(feature, parts.reason, nullptr, false);
        writer_->Begin(feature);
        const std::int64_t coveredBefore = cutter.CoveredLeftOut();
        std::size_t pieces = 0;
        std::string reason;
        std::shared_ptr<geos::Geometry> last;
        failure_.clear();
        for (const auto& wkb : parts.wkb) {
            try {
                last = geos::Geometry::FromWkb(wkb);
                reachesOut_ += grid_->Whole().Holds(last->Extent()) ? 0 : 1;
                const std::size_t count = cutter.Cut(last);
                pieces += count;
                if (count == 0) reason = kNothing;
            } catch (const RuntimeError& error) {
                reason = error.Description();
            }
        }
        linearised_ += parts.linearised ? 1 : 0;
        surfaces_ += parts.surfaces ? 1 : 0;
        measured_ += parts.measures ? 1 : 0;
        if (pieces > 0) {
            ++summary_.placed;
            if (!reason.empty()) ++partly_;
            return;
        }
        const bool coveredOnly = cutter.CoveredLeftOut() > coveredBefore;
        if (coveredOnly) reason = kCoveredOnly;
        if (!failure_.empty()) reason = failure_;
        Skip(feature, reason, last.get(), !coveredOnly || !failure_.empty());
    }

    /// @param lost it holds something that has a place
    void Skip(const OGRFeature& feature, const std::string& reason, const geos::Geometry* geometry,
              bool lost) {
        ++summary_.skipped[reason];
        summary_.lost += lost ? 1 : 0;
        std::string record = ",\n{\"type\":\"Feature\",\"properties\":{" + gdal::JsonMembers(feature);
        if (feature.GetFieldCount() > 0) record += ',';
        record += gdal::JsonText(added_.id) + ':' + std::to_string(feature.GetFID()) +
                  ",\"reason\":" + gdal::JsonText(reason) + "},\"geometry\":";
        if (geometry != nullptr)
            AppendGeometry(record, geometry->Coordinates());
        else
            record += "null";
        spool_->Add(kSkippedRecords, record + '}');
    }

    void AddNotices() {
        const auto note = [this](std::int64_t count, const std::string& what) {
            if (count > 0) summary_.notices.push_back("features " + what + ": " + std::to_string(count));
        };
        note(linearised_, "whose curves became lines of short segments");
        note(surfaces_, "whose triangles and faces became areas");
        note(measured_, "whose measures are not kept");
        if (partly_ > 0)
            summary_.errors.push_back("members of collections that could not be placed, in features: " +
                                      std::to_string(partly_));
        if (reachesOut_ > 0)
            summary_.errors.push_back(
                std::to_string(reachesOut_) +
                " geometries reach out of the extent that the source states for its layer; "
                "copy it with ogr2ogr, which states it anew");
    }

    void WriteTiles(const WorkFolder& work, const std::string& folder, Halves& halves) {
        const auto counts = spool_->Counts();
        std::int64_t done = 0;
        for (const auto& [number, pieces] : counts) {
            if (number == kSkippedRecords) continue;
            ++summary_.occupied;
            if (Interrupted()) continue;
            WriteTile(work, folder, number, pieces);
            halves.Reach(1, ++done, static_cast<std::int64_t>(counts.size()));
        }
        if (summary_.Skipped() > 0) WriteSkipped(folder);
    }

    void WriteTile(const WorkFolder& work, const std::string& folder, std::int64_t number,
                   std::int64_t pieces) {
        const Long column = static_cast<Long>(number % grid_->Plan().columns) + 1;
        const Long row = static_cast<Long>(number / grid_->Plan().columns) + 1;
        const std::string id = grid_->NameOf(column, row);
        const std::string name = id + "." + writer_->Extension();
        try {
            writer_->Write(work.Path() + "/" + name, id,
                           [&](const auto& take) { spool_->Read(number, take); });
            for (std::string& companion : work.Publish(name, folder))
                companions_.push_back(std::move(companion));
        } catch (const std::exception& error) {
            work.Clear();
            summary_.failures.push_back({id, work.WithoutPath(error.what())});
            return;
        }
        ++summary_.written;
        summary_.pieces += pieces;
        const geos::Bounds b = grid_->BoundsOf(column, row);
        const Rectangle place{b.xMin, b.yMin, b.xMax, b.yMax};
        tiles_.push_back({name, column, row, place, place, 0, 0, id});
    }

    void WriteSkipped(const std::string& folder) {
        auto draft = std::make_unique<DraftFile>(folder, ".geojson");
        WriteFeatures(draft->Path(), "skipped", system_,
                      [&](const auto& take) { spool_->Read(kSkippedRecords, take); });
        drafts_ = std::make_unique<DraftSet>(folder);
        drafts_->Add("skipped", ".geojson", std::move(draft));
    }

    void AddProducts(const std::string& folder) {
        if (!drafts_) drafts_ = std::make_unique<DraftSet>(folder);
        if (tiles_.empty() && summary_.Skipped() == 0) return;
        try {
            summary_.index =
                drafts_->Publish("tiles", ".geojson", [&](const std::vector<std::string>& names) {
                    std::vector<std::string> companions = companions_;
                    companions.insert(companions.end(), names.begin(), names.end());
                    return IndexText(tiles_, system_, companions);
                });
        } catch (const std::exception& error) {
            summary_.errors.emplace_back(error.what());
        }
        summary_.skippedFile = drafts_->PathOf("skipped");
        summary_.preview = drafts_->PathOf("index");
    }

    int Finish(const std::string& folder) {
        summary_.input = job_.input;
        summary_.layer = layer_->Name();
        summary_.outdir = folder;
        summary_.grid = grid_->Plan();
        summary_.shown = desktop_->FailuresShown() + desktop_->MessagesShown();
        summary_.interrupted = Interrupted();
        summary_.Narrate(std::cerr, job_.quiet);
        std::cout << summary_.Text() << std::flush;
        if (!std::cout) throw RunError("the summary could not be written to standard output");
        return summary_.ExitCode();
    }

    const VectorJob& job_;
    ProgressDisplay progress_;
    std::shared_ptr<console::Desktop> desktop_;
    std::shared_ptr<gdal::VectorLayer> layer_;
    std::unique_ptr<VectorGrid> grid_;
    AddedFields added_;
    std::string system_;
    std::unique_ptr<PieceWriter> writer_;
    std::unique_ptr<TileSpool> spool_;
    std::unique_ptr<DraftSet> drafts_;
    std::vector<PlacedTile> tiles_;
    std::vector<std::string> companions_;
    VectorSummary summary_;
    std::string failure_;  ///< the last one that was shown
    std::int64_t linearised_ = 0, surfaces_ = 0, measured_ = 0, partly_ = 0, reachesOut_ = 0;
};

}  // namespace

int RunVector(const VectorJob& job) {
    return VectorRun(job).Run();
}

int RunLocate(const VectorJob& job, double x, double y) {
    ProgressDisplay progress(std::cerr, ProgressMode::None);
    utility::Settings services;
    services.languageOffset = job.languageOffset;
    const auto desktop = InstallPlatform(
        job.onError, progress, [](const std::string&) {}, std::move(services));
    const auto layer = OpenLayer(job);
    VectorGrid grid(layer, job.sizes, job.prefix);
    geos::Shape place;
    place.type = GeometryType::Point;
    place.AddPoint({x, y});
    const TileNumbers tile = grid.Locate(geos::Geometry::Make(std::move(place)));
    if (tile.column == 0) {
        const geos::Bounds b = grid.Whole();
        std::string text = "no tile holds the point: the tiles lie from x ";
        gdal::AppendJson(text, b.xMin);
        gdal::AppendJson(text += " to ", b.xMax);
        gdal::AppendJson(text += " and from y ", b.yMin);
        gdal::AppendJson(text += " to ", b.yMax);
        throw RunError(text);
    }
    std::cout << "{\"column\":" << tile.column << ",\"row\":" << tile.row
              << ",\"id\":" << gdal::JsonText(grid.Tiles().GetTileID(tile.column, tile.row))
              << ",\"tile\":" << gdal::JsonText(grid.NameOf(tile.column, tile.row))
              << ",\"on_edge\":" << (tile.onEdge ? "true" : "false") << "}\n"
              << std::flush;
    if (!std::cout) throw RunError("the answer could not be written to standard output");
    return desktop->FailuresShown() == 0 ? kExitDone : kExitIncomplete;
}

}  // namespace orvo::host
