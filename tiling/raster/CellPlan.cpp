#include "tiling/raster/CellPlan.h"

#include <algorithm>

#include "platform/RuntimeError.h"
#include "support/Arithmetic.h"
#include "tiling/output/Rectangles.h"

namespace orvo::tiling {

CellPlan::CellPlan(BlockLayer& block, const std::optional<Rectangle>& clip)
    : block_(block), tileWidth_(block.TileColumns()), tileHeight_(block.TileRows()), clip_(clip) {}

CellPlan::Cell CellPlan::At(std::int64_t index) const {
    constexpr double kCell = BlockLayer::kCell;
    const Long x = static_cast<Long>(index % block_.Cells().columns) * tileWidth_;
    const Long y = static_cast<Long>(index / block_.Cells().columns) * tileHeight_;
    Cell cell;
    cell.window = {x, y, std::min(tileWidth_, block_.Width() - x),
                   std::min(tileHeight_, block_.Height() - y)};
    const PixelWindow& w = cell.window;
    const double top = kCell * (block_.Height() - y), left = kCell * x;
    cell.extent = {left, top - kCell * w.height, left + kCell * w.width, top};
    if (!clip_) return cell;
    const auto part = EnvelopeOf(*clip_);
    part->Intersect(*EnvelopeOf(cell.extent));
    cell.inside = !part->IsEmpty();
    if (!cell.inside) return cell;
    cell.extent = EdgesOf(*part);
    try {
        cell.window = {Add(x, RoundUp(Divide(part->XMin() - left, kCell))),
                       Add(y, RoundUp(Divide(top - part->YMax(), kCell))),
                       RoundUp(Divide(part->Width(), kCell)), RoundUp(Divide(part->Height(), kCell))};
    } catch (const RuntimeError&) {
        cell.window = {};  // the component fails alike, and asks for none
    }
    return cell;
}

}  // namespace orvo::tiling
