// The cells of a raster's grid, as the component will ask the services for them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/Raster.h"
#include "platform/Utility.h"
#include "tiling/output/PlacedTile.h"
#include "tiling/raster/RasterGrid.h"

namespace orvo::tiling {

/// What the component asks for, computed with its arithmetic: edges are accumulated cell by cell, windows of
/// a clip area rounded up.
class CellPlan {
  public:
    struct Cell {
        bool inside = true;  ///< it meets the clip area, or there is none
        PixelWindow window;  ///< of a conversion
        Rectangle extent;    ///< of an export
    };

    CellPlan(IRasterLayer& layer, const Grid& grid, const std::optional<Rectangle>& clip);

    std::int64_t Count() const { return grid_.Count(); }
    /// @param index from 0, row by row from the top left
    Cell At(std::int64_t index) const;
    Long ColumnOf(std::int64_t index) const { return static_cast<Long>(index % grid_.columns); }
    Long RowOf(std::int64_t index) const { return static_cast<Long>(index / grid_.columns); }

  private:
    Grid grid_;
    std::optional<Rectangle> clip_;
    Point cell_;
    Long columns_, rows_;             ///< of the raster
    std::vector<double> left_, top_;  ///< edges of columns and rows, one more than there are
};

}  // namespace orvo::tiling
