// orvo-tile raster: the run from the opened source to the summary.
#include <cpl_string.h>
#include <gdal_priv.h>

#include <cmath>
#include <filesystem>
#include <iostream>
#include <limits>
#include <memory>
#include <sstream>
#include <utility>

#include "host/Interrupt.h"
#include "host/ProgressDisplay.h"
#include "host/Session.h"
#include "platform/console/Desktop.h"
#include "platform/memory/Envelope.h"
#include "support/SystemPath.h"
#include "tileimage/clsTileImage.h"
#include "tiling/Errors.h"
#include "tiling/output/OutputFolder.h"
#include "tiling/raster/Grid.h"
#include "tiling/raster/Notices.h"
#include "tiling/raster/Products.h"
#include "tiling/raster/RasterJob.h"
#include "tiling/raster/Summary.h"
#include "tiling/raster/TileLedger.h"

namespace fs = std::filesystem;

namespace orvo::host {
namespace {

constexpr double kSamePlace = 1e-6;  ///< of a cell: a deviation below is the arithmetic's

Rectangle EdgesOf(gdal::RasterLayer& layer) {
    const auto& t = layer.GeoTransform();
    return {t[0], t[3] + layer.Height() * t[5], t[0] + layer.Width() * t[1], t[3]};
}

Rectangle EdgesOf(const IEnvelope& envelope) {
    return {envelope.XMin(), envelope.YMin(), envelope.XMax(), envelope.YMax()};
}

std::string Text(const Rectangle& r) {
    std::ostringstream text;
    text.precision(15);
    text << r.xMin << ' ' << r.yMin << ' ' << r.xMax << ' ' << r.yMax;
    return text.str();
}

std::shared_ptr<IEnvelope> EnvelopeOf(const Rectangle& r) {
    auto envelope = std::make_shared<memory::Envelope>();
    envelope->XMin(r.xMin);
    envelope->XMax(r.xMax);
    envelope->YMin(r.yMin);
    envelope->YMax(r.yMax);
    return envelope;
}

void CheckClip(gdal::RasterLayer& layer, const RasterJob& job) {
    if (!job.clip) return;
    const auto common = EnvelopeOf(*job.clip);
    common->Intersect(*EnvelopeOf(EdgesOf(layer)));
    if (common->IsEmpty()) {
        throw UsageError("--clip " + Text(*job.clip) + " does not meet the layer, which lies at " +
                         Text(EdgesOf(layer)));
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

class RasterRun {
  public:
    explicit RasterRun(const RasterJob& job) : job_(job), progress_(std::cerr, job.progress) {}

    int Run() {
        layer_ = gdal::OpenRasterLayer(job_.input);
        CheckFormat(SourceExtension(*layer_, job_), job_);
        CheckClip(*layer_, job_);
        grid_ = PlanGrid(*layer_, job_.tileWidth, job_.tileHeight);
        ledger_ = std::make_unique<TileLedger>(progress_, static_cast<Long>(grid_.columns));
        InstallPlatform();
        OutputFolder folder(job_.outdir);
        folder.CheckEarlier(job_.overwrite, SourceFiles());
        if (grid_.Count() > kMostTiles) return RefuseGrid();
        Summary summary;
        for (std::string& notice : FormatNotices(*layer_, job_)) summary.AddNotice(std::move(notice));
        folder.Prepare();
        try {
            Cut(folder.Path());
            Collect(folder.Path(), summary);
            AddProducts(folder.Path(), summary);
        } catch (...) {
            folder.RemoveIfUnused();
            throw;
        }
        if (summary.LeavesNothing()) folder.RemoveIfUnused();
        return Finish(folder.Path(), summary);
    }

  private:
    /// All files that the layer is read from, also through a virtual raster.
    std::vector<std::string> SourceFiles() {
        std::vector<std::string> files{job_.input, job_.name};
        const CPLStringList list(layer_->Dataset().GetFileList());
        for (int i = 0; i < list.size(); ++i) files.emplace_back(list[i]);
        return files;
    }

    void InstallPlatform() {
        utility::Settings services;
        services.languageOffset = job_.languageOffset;
        services.onFailure = [this](const std::string& target, const std::string& reason) {
            ledger_->AddReason(PlainReason(reason, target));
        };
        services.onWritten = [this](const utility::WrittenImage& image) { ledger_->AddImage(image); };
        const auto hear = [this](const std::string& failure) {
            ledger_->AddReason(PlainReason(failure, ""));
        };
        desktop_ = host::InstallPlatform(job_.onError, progress_, hear, std::move(services));
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
    int RefuseGrid() {
        if (grid_.Count() <= std::numeric_limits<Long>::max()) MakeTiler()->Tile();
        const Long size = SmallestTileSize(*layer_);
        throw UsageError("this grid has " + std::to_string(grid_.columns) + " x " +
                         std::to_string(grid_.rows) + " = " + std::to_string(grid_.Count()) +
                         " tiles, and at most " + std::to_string(kMostTiles) +
                         " are cut in one run; --tile-size " + std::to_string(size) + " would do");
    }

    void Cut(const std::string& folder) {
        const auto tiler = MakeTiler();
        tiler->SavePath(folder);
        const std::shared_ptr<TileLedger> status(ledger_.get(), [](TileLedger*) {});
        tiler->StatusObject(status);
        ledger_->Watch(tiler->TileObjectDict());
        if (!job_.quiet) {
            std::cerr << "orvo-tile: cutting " << FileNameOf(job_.input) << " (" << layer_->Width() << " x "
                      << layer_->Height() << " pixels) into " << grid_.columns << " x " << grid_.rows
                      << " tiles of " << grid_.tileWidth << " x " << grid_.tileHeight << " pixels\n";
        }
        try {
            tiler->Tile();
        } catch (const std::exception& failure) {
            // The error dialog itself failed, as where its log cannot be written; what is there stays.
            if (!Interrupted()) ledger_->AddReason(PlainReason(failure.what(), ""));
        }
        ledger_->Finish();
    }

    /// Sorts the cells into written, failed and outside; whatever the run does not account for was not
    /// reached.
    void Collect(const std::string& folder, Summary& summary) {
        summary.SetExpected(static_cast<Long>(grid_.Count()));
        for (const std::string& reason : ledger_->EarlyReasons()) summary.AddError(reason);
        const auto& cells = ledger_->Cells();
        for (const CellRecord& cell : cells) {
            const bool stopped = Interrupted() && &cell == &cells.back() && cell.reasons.empty();
            if (!cell.tile.empty()) {
                CollectTile(folder, cell, summary);
            } else if (cell.inside || !cell.reasons.empty()) {
                if (!stopped) summary.AddFailure({cell.column, cell.row, Joined(cell.reasons)});
            } else if (!stopped) {
                summary.AddOutside();
            }
            KeepLeftovers(folder, cell);
        }
        if (shifted_ > 0) {
            summary.AddNotice(std::to_string(shifted_) +
                              " clipped tiles do not fill their rectangles in the index exactly: they are "
                              "cut in whole pixels, "
                              "where a fraction goes up and an odd number gains one; world files and preview "
                              "show where they lie");
        }
        if (!leftovers_.empty()) {
            summary.AddNotice(std::to_string(leftovers_.size()) +
                              " exported TIFFs that could not be converted are "
                              "kept in the folder");
        }
        summary.SetLeftovers(leftovers_);
    }

    void CollectTile(const std::string& folder, const CellRecord& cell, Summary& summary) {
        std::error_code missing;
        const fs::path path = fs::path(folder) / cell.tile;
        if (!fs::is_regular_file(path, missing) || fs::file_size(path, missing) == 0) {
            summary.AddFailure({cell.column, cell.row, "the tile " + cell.tile + " has vanished"});
            return;
        }
        summary.AddWritten();
        if (!cell.reasons.empty()) summary.AddRecovery(Joined(cell.reasons));
        PlacedTile tile{cell.tile, cell.column, cell.row, EdgesOf(*cell.envelope), EdgesOf(*cell.envelope), 0,
                        0};
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

    void KeepLeftovers(const std::string& folder, const CellRecord& cell) {
        for (const utility::WrittenImage& image : cell.images) {
            std::string name = FileNameOf(image.path);
            std::error_code missing;
            if (name != cell.tile && fs::is_regular_file(fs::path(folder) / name, missing)) {
                leftovers_.push_back(std::move(name));
            }
        }
    }

    void AddProducts(const std::string& folder, Summary& summary) {
        Products products = WriteProducts(job_, *layer_, folder, tiles_, leftovers_);
        for (std::string& notice : products.notices) summary.AddNotice(std::move(notice));
        for (std::string& error : products.errors) summary.AddError(std::move(error));
        summary.SetProducts(products.index, products.vrt, products.preview);
    }

    int Finish(const std::string& folder, Summary& summary) {
        summary.SetShown(desktop_->FailuresShown() + desktop_->MessagesShown());
        summary.SetInterrupted(Interrupted());
        summary.Narrate(std::cerr, job_.quiet, folder);
        std::cout << summary.Json(job_.input, folder) << std::flush;
        if (!std::cout) throw RunError("the summary could not be written to standard output");
        return summary.ExitCode();
    }

    static std::string Joined(const std::vector<std::string>& reasons) {
        std::string text;
        std::string last;
        for (const std::string& reason : reasons) {
            if (reason != last) text += (text.empty() ? "" : "; then: ") + reason;
            last = reason;
        }
        return text.empty() ? "no reason was given" : text;
    }

    const RasterJob& job_;
    std::shared_ptr<gdal::RasterLayer> layer_;
    Grid grid_;
    ProgressDisplay progress_;
    std::unique_ptr<TileLedger> ledger_;
    std::shared_ptr<WatchedDesktop> desktop_;
    std::vector<PlacedTile> tiles_;
    std::vector<std::string> leftovers_;
    int shifted_ = 0;  ///< tiles whose pixels do not fill exactly their envelope
};

}  // namespace

int RunRaster(const RasterJob& job) {
    return RasterRun(job).Run();
}

}  // namespace orvo::host
