// The cells of a block, as the component will ask the services for them.
#pragma once

#include <cstdint>
#include <optional>

#include "tiling/raster/BlockLayer.h"

namespace orvo::tiling {

/// What the component asks for, computed with its arithmetic: windows of a clip area are rounded up.
class CellPlan {
  public:
    struct Cell {
        bool inside = true;  ///< it meets the clip area, or there is none
        PixelWindow window;  ///< of a conversion
        Rectangle extent;    ///< of an export
    };

    /// The block must outlive the plan. @param clip in the block's units
    CellPlan(BlockLayer& block, const std::optional<Rectangle>& clip);

    std::int64_t Count() const { return block_.Cells().Count(); }
    /// @param index from 0, row by row from the top left
    Cell At(std::int64_t index) const;

  private:
    BlockLayer& block_;
    Long tileWidth_, tileHeight_;
    std::optional<Rectangle> clip_;
};

}  // namespace orvo::tiling
