// What the component asks for tile by tile, and what it need not be given.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/Utility.h"
#include "tiling/raster/TilesAhead.h"

namespace orvo::tiling {

/// Names in a folder that belongs to one run: none is given twice, so none has to be marked on the disk.
class OwnNames final : public IUtilTools {
  public:
    /// @param counter of the names that were given; outlives this object
    OwnNames(std::shared_ptr<IUtilTools> inner, std::int64_t& counter)
        : inner_(std::move(inner)), counter_(counter) {}

    Integer GetLanguageOffset() override { return inner_->GetLanguageOffset(); }
    std::string GetFreeFileName(const std::string& folder, const std::string& baseName,
                                const std::vector<std::string>& /*extensions*/) override {
        return folder + "/" + baseName + "_" + std::to_string(++counter_);
    }

  private:
    std::shared_ptr<IUtilTools> inner_;
    std::int64_t& counter_;
};

/// Export and conversion as the utility library does them, but for tiles that are there from an earlier run,
/// tiles that are blank and to be left out, and tiles that were made ahead.
class TileService final : public IRasterConvert {
  public:
    /// All but the inner service must outlive this object.
    TileService(std::shared_ptr<IRasterConvert> inner, const BlockInWork& block, TileMaker& maker,
                TileAccount& account, TilesAhead& ahead, bool skipBlank)
        : inner_(std::move(inner)),
          block_(block),
          maker_(maker),
          account_(account),
          ahead_(ahead),
          skipBlank_(skipBlank) {}

    std::string ExportRasterWindow(const std::shared_ptr<IRasterLayer>& layer, const std::string& targetFile,
                                   Integer quality, const std::shared_ptr<void>& reserved,
                                   const std::shared_ptr<IEnvelope>& envelope, Long width,
                                   Long height) override;
    bool ConvertExtern(const std::string& program, const std::string& sourceFile, std::string& targetFile,
                       Integer quality, const PixelWindow* window, bool wait) override;

  private:
    enum class Need { Make, IsThere, LeaveOut };
    Need NeedOf(const utility::Request& asked, const raster::TileWindow& window);
    bool IsBlank(const raster::TileWindow& window) const;
    bool TakeConverted(ReadyTile ready, const utility::Request& asked, const std::string& target);

    std::shared_ptr<IRasterConvert> inner_;
    const BlockInWork& block_;
    TileMaker& maker_;
    TileAccount& account_;
    TilesAhead& ahead_;
    bool skipBlank_;
    std::shared_ptr<ReadyTile> ready_;  ///< made ahead, of the tile that is asked for
    std::int64_t failed_ = -1;          ///< the tile whose conversion failed last
};

}  // namespace orvo::tiling
