#include "tiling/raster/BlockLayer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tiling/output/Rectangles.h"

namespace orvo::tiling {
namespace {

/// Cuts an axis back to the layer; the pixels that a part is shown at shrink with it.
void CutBack(double& from, double& to, int& shown, std::int64_t size) {
    const double asked = to - from;
    from = std::max(from, 0.0);
    to = std::min(to, static_cast<double>(size));
    if (asked > 0 && to - from < asked)
        shown = std::max(1, static_cast<int>(std::lround(shown * (to - from) / asked)));
}

}  // namespace

BlockLayer::BlockLayer(const RasterGrid& grid, const CellRange& cells, std::string path)
    : grid_(grid),
      cells_(cells),
      path_(std::move(path)),
      left_(cells.column * grid.TileWidth() - grid.Left()),
      top_(cells.row * grid.TileHeight() - grid.Top()),
      width_(static_cast<Long>(std::min(cells.columns * grid.TileWidth(), grid.LayerWidth() - left_))),
      height_(static_cast<Long>(std::min(cells.rows * grid.TileHeight(), grid.LayerHeight() - top_))) {}

std::shared_ptr<IEnvelope> BlockLayer::Extent() {
    return EnvelopeOf({0, 0, kCell * width_, kCell * height_});
}

Long BlockLayer::SizeAcross() const {
    return cells_.columns == 1 ? -1 : 2 * grid_.TileWidth() - 1;
}

Long BlockLayer::SizeDown() const {
    return cells_.rows == 1 ? -1 : 2 * grid_.TileHeight() - 1;
}

raster::TileWindow BlockLayer::PixelsOf(const Rectangle& part, Long columns, Long rows) const {
    const auto x = static_cast<double>(left_), y = static_cast<double>(top_);
    raster::TileWindow window{part.xMin / kCell + x,
                              height_ - part.yMax / kCell + y,
                              part.xMax / kCell + x,
                              height_ - part.yMin / kCell + y,
                              columns,
                              rows};
    CutBack(window.left, window.right, window.columns, grid_.LayerWidth());
    CutBack(window.top, window.bottom, window.rows, grid_.LayerHeight());
    return window;
}

raster::TileWindow BlockLayer::PixelsOf(const PixelWindow& part) const {
    const double column = part.column, row = part.row;
    return PixelsOf({kCell * column, kCell * (height_ - row - part.height), kCell * (column + part.width),
                     kCell * (height_ - row)},
                    part.width, part.height);
}

Rectangle BlockLayer::PartOf(const raster::TileWindow& pixels) const {
    const auto x = static_cast<double>(left_), y = static_cast<double>(top_);
    return {kCell * (pixels.left - x), kCell * (height_ - (pixels.bottom - y)), kCell * (pixels.right - x),
            kCell * (height_ - (pixels.top - y))};
}

}  // namespace orvo::tiling
