#include "platform/raster/TileWindow.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/RuntimeError.h"

namespace orvo::raster {
namespace {

constexpr double kSnap = 1e-6;  // cells

double Snap(double cells) {
    const double whole = std::round(cells);
    return std::abs(cells - whole) <= kSnap ? whole : cells;
}

}  // namespace

bool TileWindow::IsExact() const {
    return left == std::floor(left) && top == std::floor(top) && right - left == columns &&
           bottom - top == rows;
}

TileWindow ExactWindow(int column, int row, int columns, int rows) {
    return {static_cast<double>(column),
            static_cast<double>(row),
            static_cast<double>(column) + columns,
            static_cast<double>(row) + rows,
            columns,
            rows};
}

TileWindow WindowOf(const std::array<double, 6>& geoTransform, int rasterColumns, int rasterRows,
                    const IEnvelope& envelope, Long columns, Long rows) {
    if (columns <= 0 || rows <= 0) {
        throw RuntimeError(Fault::InvalidProcedureCall,
                           "a tile of " + std::to_string(columns) + " x " + std::to_string(rows) + " pixels");
    }
    if (envelope.IsEmpty()) throw RuntimeError(Fault::InvalidProcedureCall, "the envelope is empty");
    const auto column = [&](double x) { return Snap((x - geoTransform[0]) / geoTransform[1]); };
    const auto row = [&](double y) { return Snap((y - geoTransform[3]) / geoTransform[5]); };
    const TileWindow window{std::max(column(envelope.XMin()), 0.0),
                            std::max(row(envelope.YMax()), 0.0),
                            std::min<double>(column(envelope.XMax()), rasterColumns),
                            std::min<double>(row(envelope.YMin()), rasterRows),
                            columns,
                            rows};
    if (!(window.right > window.left && window.bottom > window.top)) {
        throw RuntimeError(Fault::InvalidProcedureCall, "the envelope has no area on the raster");
    }
    return window;
}

bool CutBack(PixelWindow& window, int columns, int rows) {
    const std::int64_t right = std::min<std::int64_t>(std::int64_t{window.column} + window.width, columns);
    const std::int64_t bottom = std::min<std::int64_t>(std::int64_t{window.row} + window.height, rows);
    const Long column = std::max(window.column, 0);
    const Long row = std::max(window.row, 0);
    if (right <= column || bottom <= row) return false;
    window = {column, row, static_cast<Long>(right - column), static_cast<Long>(bottom - row)};
    return true;
}

}  // namespace orvo::raster
