// A part of a raster layer as the component sees it.
#pragma once

#include <algorithm>
#include <memory>
#include <string>

#include "platform/Raster.h"
#include "tiling/raster/RasterGrid.h"

namespace orvo::tiling {

/// A block of the grid in units of half a pixel from (0, 0) on, so that every size of a tile in pixels has a
/// size in whole units that the component rounds to it, and its sums are exact. The block may begin left of
/// the layer or above it.
class BlockLayer final : public IRasterLayer,
                         public IRaster,
                         public IRasterDataset,
                         public std::enable_shared_from_this<BlockLayer> {
  public:
    static constexpr double kCell = 2;

    /// The grid must outlive the block. @param path of a file that is there; its extension tells the
    /// component how tiles are to be made
    BlockLayer(const RasterGrid& grid, const CellRange& cells, std::string path);

    std::string FilePath() override { return path_; }
    std::shared_ptr<IRaster> Raster() override { return shared_from_this(); }
    bool IsInGeodatabase() override { return false; }
    std::shared_ptr<IEnvelope> Extent() override;
    Long Width() override { return width_; }
    Long Height() override { return height_; }
    Point MeanCellSize() override { return {kCell, kCell}; }
    std::shared_ptr<IRasterDataset> RasterDataset() override { return shared_from_this(); }
    std::string FormatName() override { return "block"; }

    const CellRange& Cells() const { return cells_; }
    /// What the component is given for a tile's size.
    Long SizeAcross() const;
    Long SizeDown() const;
    /// Of a tile, in pixels.
    Long TileColumns() const { return std::min(grid_.TileWidth(), width_); }
    Long TileRows() const { return std::min(grid_.TileHeight(), height_); }
    /// The layer's pixels in a part of the block, cut back to the layer; and the other way round.
    raster::TileWindow PixelsOf(const Rectangle& part, Long columns, Long rows) const;
    raster::TileWindow PixelsOf(const PixelWindow& part) const;
    Rectangle PartOf(const raster::TileWindow& pixels) const;

  private:
    const RasterGrid& grid_;
    CellRange cells_;
    std::string path_;
    std::int64_t left_, top_;  ///< of the block in pixels from the layer's corner
    Long width_, height_;      ///< pixels, to the layer's edge at most
};

}  // namespace orvo::tiling
