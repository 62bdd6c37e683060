#include "tiling/raster/TileService.h"

#include "platform/RuntimeError.h"
#include "tiling/Paths.h"
#include "tiling/output/Rectangles.h"

namespace orvo::tiling {

TileService::Need TileService::NeedOf(const utility::Request& asked, const raster::TileWindow& window) {
    using State = TileAccount::State;
    const std::int64_t tile = block_.tileOf(block_.ledger.IndexOf(asked));
    maker_.Expect(FileNameOf(account_.StemOf(tile)), failed_ == tile);
    if (account_.StateOf(tile) == State::Written) {
        account_.Place(tile, window);
        return Need::IsThere;
    }
    if (account_.StateOf(tile) == State::Blank) return Need::LeaveOut;
    if (!skipBlank_) return Need::Make;
    try {
        if (!maker_.IsBlank(window)) return Need::Make;
    } catch (const RuntimeError&) {
        return Need::Make;  // which says why it cannot be read
    }
    account_.Set(tile, State::Blank);
    return Need::LeaveOut;
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
    return inner_->ExportRasterWindow(layer, targetFile, quality, reserved, envelope, width, height);
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
    if (inner_->ConvertExtern(program, sourceFile, target, quality, window, wait)) {
        maker_.Rename(window != nullptr ? TileMaker::kConverted : sourceFile, target);
        targetFile = std::move(target);
        return true;
    }
    failed_ = block_.tileOf(block_.ledger.IndexOf(asked));
    return false;
}

}  // namespace orvo::tiling
