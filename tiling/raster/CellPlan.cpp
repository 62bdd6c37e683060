#include "tiling/raster/CellPlan.h"

#include <algorithm>

#include "platform/RuntimeError.h"
#include "support/Arithmetic.h"
#include "tiling/output/Rectangles.h"

namespace orvo::tiling {

CellPlan::CellPlan(IRasterLayer& layer, const Grid& grid, const std::optional<Rectangle>& clip)
    : grid_(grid), clip_(clip) {
    IRaster& raster = Object(layer.Raster());
    cell_ = raster.MeanCellSize();
    columns_ = raster.Width();
    rows_ = raster.Height();
    const Rectangle edges = EdgesOf(Object(layer.Extent()));
    left_.push_back(edges.xMin);
    for (std::int64_t x = 0; x < grid_.columns; ++x) {
        const Long w = std::min(grid_.tileWidth, columns_ - static_cast<Long>(x) * grid_.tileWidth);
        left_.push_back(left_.back() + w * cell_.X);
    }
    top_.push_back(edges.yMax);
    for (std::int64_t y = 0; y < grid_.rows; ++y) {
        const Long h = std::min(grid_.tileHeight, rows_ - static_cast<Long>(y) * grid_.tileHeight);
        top_.push_back(top_.back() - h * cell_.Y);
    }
}

CellPlan::Cell CellPlan::At(std::int64_t index) const {
    const Long x = ColumnOf(index), y = RowOf(index);
    const auto column = static_cast<std::size_t>(x), row = static_cast<std::size_t>(y);
    Cell cell;
    cell.window = {x * grid_.tileWidth, y * grid_.tileHeight,
                   std::min(grid_.tileWidth, columns_ - x * grid_.tileWidth),
                   std::min(grid_.tileHeight, rows_ - y * grid_.tileHeight)};
    cell.extent = {left_[column], top_[row + 1], left_[column + 1], top_[row]};
    if (!clip_) return cell;
    const auto part = EnvelopeOf(*clip_);
    part->Intersect(*EnvelopeOf(cell.extent));
    cell.inside = !part->IsEmpty();
    if (!cell.inside) return cell;
    const Rectangle tile = cell.extent;
    cell.extent = EdgesOf(*part);
    try {
        cell.window = {Add(cell.window.column, RoundUp(Divide(part->XMin() - tile.xMin, cell_.X))),
                       Add(cell.window.row, RoundUp(Divide(tile.yMax - part->YMax(), cell_.Y))),
                       RoundUp(Divide(part->Width(), cell_.X)), RoundUp(Divide(part->Height(), cell_.Y))};
    } catch (const RuntimeError&) {
        cell.window = {};  // the component fails alike, and asks for none
    }
    return cell;
}

}  // namespace orvo::tiling
