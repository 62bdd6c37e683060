// The grid that a run walks, known beforehand.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Utility.h"
#include "platform/gdal/RasterLayer.h"
#include "platform/raster/TileWindow.h"
#include "tiling/Parts.h"
#include "tiling/output/PlacedTile.h"
#include "tiling/raster/RasterJob.h"

namespace orvo::tiling {

/// What the component cuts in one run.
constexpr std::int64_t kMostTiles = 999;

/// Tiles of equal size in pixels, counted from an upper left corner, which is the layer's or lies above and
/// left of it. All places are worked out from the layer's own geotransform, so nothing accumulates.
class RasterGrid {
  public:
    /// Fails with UsageError where a tile's size in pixels is 0 or does not fit into 32 bits, where the clip
    /// area misses the layer, and where the layer reaches out of the grid.
    RasterGrid(gdal::RasterLayer& layer, const RasterJob& job);

    Long TileWidth() const { return tileWidth_; }  ///< pixels
    Long TileHeight() const { return tileHeight_; }
    std::int64_t Columns() const { return columns_; }  ///< from the grid's origin to the layer's last tile
    std::int64_t Rows() const { return rows_; }
    /// The cells that the run visits: those that the layer and the clip area meet.
    const CellRange& Visited() const { return visited_; }
    /// What all parts of the job visit.
    const CellRange& Whole() const { return whole_; }
    /// The visited cells in parts that the component cuts in one run, row by row.
    std::vector<CellRange> Blocks() const;

    std::int64_t LayerWidth() const { return width_; }  ///< pixels
    std::int64_t LayerHeight() const { return height_; }
    /// Pixels from the grid's origin to the layer's upper left corner.
    std::int64_t Left() const { return left_; }
    std::int64_t Top() const { return top_; }
    /// A cell's part of the layer, in the layer's pixels.
    PixelWindow WindowOf(std::int64_t column, std::int64_t row) const;
    /// Where a part of the layer lies, in map units.
    Rectangle PlaceOf(const raster::TileWindow& window) const;
    /// A cell's upper left corner in map units; may lie outside of the layer.
    Point CornerOf(std::int64_t column, std::int64_t row) const;
    /// An area in pixels of the layer; what rounding has moved from a pixel's edge is back there.
    raster::TileWindow PixelsOf(const Rectangle& area) const;

    /// What the user should know of the sizes; empty for nothing.
    const std::vector<std::string>& Notices() const { return notices_; }

  private:
    void SetOrigin(const RasterJob& job);
    void SetVisited(const RasterJob& job);
    void SayPitch(gdal::RasterLayer& layer, const RasterJob& job);

    std::array<double, 6> t_;  ///< the layer's geotransform
    Long width_, height_;      ///< of the layer, pixels
    Long tileWidth_, tileHeight_;
    std::int64_t left_ = 0, top_ = 0;
    std::int64_t columns_ = 0, rows_ = 0;
    CellRange visited_, whole_;
    std::vector<std::string> notices_;
};

}  // namespace orvo::tiling
