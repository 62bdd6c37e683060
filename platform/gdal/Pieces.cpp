#include "platform/gdal/Pieces.h"

#include <gdal_priv.h>

#include <algorithm>

namespace orvo::gdal {
namespace {

constexpr int kCells = 1 << 20;

/// The greatest multiple of `block` that is at most `most`, but at least one block, and never past `size`.
int Step(int block, int most, int size) {
    return std::min(size, std::max(1, most / block) * block);
}

}  // namespace

void ForEachPiece(GDALDataset& dataset, const std::function<void(const TileWindow&)>& visit) {
    const int width = dataset.GetRasterXSize();
    const int height = dataset.GetRasterYSize();
    int blockWidth = 0;
    int blockHeight = 0;
    dataset.GetRasterBand(1)->GetBlockSize(&blockWidth, &blockHeight);
    // A strip of many rows is read in parts; the block cache then holds it.
    const int columns =
        Step(std::clamp(blockWidth, 1, width), kCells / std::clamp(blockHeight, 1, 1024), width);
    const int rows = std::min(Step(std::clamp(blockHeight, 1, height), kCells / columns, height),
                              std::max(1, kCells / columns));
    for (int row = 0; row < height; row += rows) {
        for (int column = 0; column < width; column += columns) {
            visit(ExactWindow(column, row, std::min(columns, width - column), std::min(rows, height - row)));
        }
    }
}

}  // namespace orvo::gdal
