// Tiles of a block that are made before the component asks for them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tiling/Ahead.h"
#include "tiling/raster/TileAccount.h"
#include "tiling/raster/TileLedger.h"

namespace orvo::tiling {

/// A block in the making: cells counted from 0 on are these tiles of the run.
struct BlockInWork {
    BlockLayer& layer;
    TileLedger& ledger;
    /// The run's number of a cell.
    std::function<std::int64_t(std::int64_t cell)> tileOf;
};

/// What was made for a cell.
struct ReadyTile {
    raster::TileWindow window{};             ///< what it shows
    bool blank = false;                      ///< nothing; then nothing was made
    std::vector<gdal::MadeFile> files{};     ///< of an export
    std::string path{};                      ///< of a converted image
    std::string reason{};                    ///< why a conversion failed
    std::optional<PixelWindow> converted{};  ///< as a conversion cut it back
};

class TilesAhead {
  public:
    /// All must outlive this object. @param source what the component names as the layer's file
    /// @param folder where converted images wait
    TilesAhead(const BlockInWork& block, const CellPlan& plan, TileMaker& maker, const TileAccount& account,
               const RasterJob& job, const Callbacks& callbacks, std::string source, std::string folder);

    /// What was made for a cell and shows the window; nothing where none was foretold so, or it was taken
    /// before. Fails as the making failed.
    std::optional<ReadyTile> Take(std::int64_t cell, const raster::TileWindow& window);

    /// A conversion that comes to an exported file which the component will give to the converter.
    void Keep(const std::string& exported, ReadyTile tile) { kept_ = {exported, std::move(tile)}; }
    std::optional<ReadyTile> TakeKept(const std::string& exported);

  private:
    using Finish = Ahead<ReadyTile>::Finish;
    Finish Begin(std::int64_t cell);
    Finish BeginConversion(std::int64_t cell, const PixelWindow& part, const raster::TileWindow& window);

    const BlockInWork& block_;
    const CellPlan& plan_;
    TileMaker& maker_;
    const RasterJob& job_;
    const Callbacks& callbacks_;
    std::string source_, folder_;
    std::pair<std::string, std::optional<ReadyTile>> kept_;
    std::vector<std::string> names_;  ///< of the tiles' files by cell; empty where none is made
    Ahead<ReadyTile> ahead_;          ///< last, for its threads use all else
};

}  // namespace orvo::tiling
