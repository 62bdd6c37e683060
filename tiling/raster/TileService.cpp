#include "tiling/raster/TileService.h"

#include "platform/RuntimeError.h"
#include "platform/files/PartFile.h"
#include "tiling/Paths.h"
#include "tiling/output/Rectangles.h"

namespace orvo::tiling {

TileService::Need TileService::NeedOf(const utility::Request& asked, const raster::TileWindow& window) {
    using State = TileAccount::State;
    const std::int64_t cell = block_.ledger.IndexOf(asked), tile = block_.tileOf(cell);
    ready_.reset();
    if (account_.StateOf(tile) == State::Written) {
        account_.Place(tile, window);
        return Need::IsThere;
    }
    if (account_.StateOf(tile) == State::Blank) return Need::LeaveOut;
    TileMaker::Files files;
    try {
        if (auto ready = ahead_.Take(cell, window)) {
            ready_ = std::make_shared<ReadyTile>(std::move(*ready));
            files = [made = ready_] { return std::move(made->files); };
        }
    } catch (...) {  // told where the tile is made
        files = [failure = std::current_exception()]() -> std::vector<gdal::MadeFile> {
            std::rethrow_exception(failure);
        };
    }
    const bool converted = ready_ && !ready_->path.empty() && ready_->reason.empty();
    maker_.Expect(FileNameOf(account_.NameOf(tile)), failed_ == tile, std::move(files), converted);
    if (!IsBlank(window)) return Need::Make;
    account_.Set(tile, State::Blank);
    return Need::LeaveOut;
}

bool TileService::IsBlank(const raster::TileWindow& window) const {
    return ready_ ? ready_->blank : skipBlank_ && maker_.IsBlank(window);
}

/// An image that was converted ahead, or the failure of that.
bool TileService::TakeConverted(ReadyTile ready, const utility::Request& asked, const std::string& target) {
    if (ready.reason.empty()) {
        if (const auto failed = files::MoveNew(ready.path, target)) ready.reason = failed.message();
    }
    if (!ready.reason.empty()) {
        block_.ledger.AddFailure(asked, ready.reason);
        failed_ = block_.tileOf(block_.ledger.IndexOf(asked));
        return false;
    }
    block_.ledger.AddImage({target, asked, ready.converted, {}});
    maker_.Put(target, ready.window);
    return true;
}

std::string TileService::ExportRasterWindow(const std::shared_ptr<IRasterLayer>& layer,
                                            const std::string& targetFile, Integer quality,
                                            const std::shared_ptr<void>& reserved,
                                            const std::shared_ptr<IEnvelope>& envelope, Long width,
                                            Long height) {
    const Rectangle e = EdgesOf(Object(envelope));
    const utility::Request asked{targetFile, std::nullopt,
                                 utility::ImageExtent{e.xMin, e.yMin, e.xMax, e.yMax, width, height}};
    switch (NeedOf(asked, block_.layer.PixelsOf(e, width, height))) {
        case Need::IsThere:
            return targetFile + ".there";
        case Need::LeaveOut:
            return "";
        case Need::Make:
            break;
    }
    std::string path =
        inner_->ExportRasterWindow(layer, targetFile, quality, reserved, envelope, width, height);
    if (ready_ && !ready_->path.empty() && !path.empty()) ahead_.Keep(path, std::move(*ready_));
    return path;
}

bool TileService::ConvertExtern(const std::string& program, const std::string& sourceFile,
                                std::string& targetFile, Integer quality, const PixelWindow* window,
                                bool wait) {
    if (program.empty()) return false;
    const utility::Request asked{targetFile, window != nullptr ? std::optional(*window) : std::nullopt, {}};
    if (window != nullptr) {
        switch (NeedOf(asked, block_.layer.PixelsOf(*window))) {
            case Need::IsThere:
                targetFile += ".there";
                return true;
            case Need::LeaveOut:
                return false;
            case Need::Make:
                break;
        }
    }
    // A window's target comes without extension.
    std::string target = targetFile + (window != nullptr ? "." + maker_.WrittenExtension() : "");
    std::optional<ReadyTile> ready = window == nullptr ? ahead_.TakeKept(sourceFile) : std::nullopt;
    if (window != nullptr && ready_) ready = std::move(*ready_);
    if (ready) {
        const bool converted = TakeConverted(std::move(*ready), asked, target);
        if (converted) targetFile = std::move(target);
        return converted;
    }
    if (inner_->ConvertExtern(program, sourceFile, target, quality, window, wait)) {
        maker_.Rename(window != nullptr ? TileMaker::kConverted : sourceFile, target);
        targetFile = std::move(target);
        return true;
    }
    failed_ = block_.tileOf(block_.ledger.IndexOf(asked));
    return false;
}

}  // namespace orvo::tiling
