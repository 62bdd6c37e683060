#include "platform/gdal/ReadAhead.h"

#include <algorithm>
#include <cstring>

namespace orvo::gdal {
namespace {

constexpr std::size_t kMostBytes = std::size_t{32} << 20;
/// Rows of one request, few enough to stay in the processor's cache.
constexpr int kRowsAtOnce = 64;

Layout Packed(GDALDataType type, std::size_t bands, int columns) {
    const auto cell = static_cast<std::size_t>(GDALGetDataTypeSizeBytes(type));
    return {.type = type,
            .pixel = cell * bands,
            .line = cell * bands * static_cast<std::size_t>(columns),
            .band = cell};
}

}  // namespace

bool ReadAhead::Holds(const Strip& wanted) const {
    return !strip_.cells.empty() && strip_.bands == wanted.bands && strip_.type == wanted.type &&
           wanted.left >= strip_.left && wanted.right <= strip_.right && wanted.top >= strip_.top &&
           wanted.bottom <= strip_.bottom;
}

/// Whether a window stands at a row's start or goes on where the last one ended.
bool ReadAhead::Follows(const TileWindow& window, int rasterColumns) {
    if (window.top != top_) {
        reach_ = top_ < 0 ? rasterColumns : right_;
        top_ = window.top;
        right_ = window.right;
        return window.left == 0;
    }
    const bool follows = window.left == right_;
    right_ = window.right;
    return follows;
}

/// Reads the wanted cells and those to their right. False where there are none to read along.
bool ReadAhead::Fetch(RasterLayer& layer, Strip wanted) {
    const int rows = wanted.bottom - wanted.top;
    const Layout cell = Packed(wanted.type, wanted.bands.size(), 1);
    const int most =
        static_cast<int>(std::min<std::size_t>(kMostBytes / (cell.pixel * static_cast<std::size_t>(rows)),
                                               static_cast<std::size_t>(layer.Width() - wanted.left)));
    const int wantedRight = wanted.right;
    wanted.right = std::min(wanted.left + most, static_cast<int>(reach_));
    if (wanted.right <= wantedRight) return false;
    const int columns = wanted.right - wanted.left;
    const Layout layout = Packed(wanted.type, wanted.bands.size(), columns);
    wanted.cells = std::move(strip_.cells);
    wanted.cells.resize(layout.line * static_cast<std::size_t>(rows));
    strip_ = {};
    for (int row = 0; row < rows; row += kRowsAtOnce) {
        ReadWindow(layer.DatasetForRows(), wanted.bands,
                   ExactWindow(wanted.left, wanted.top + row, columns, std::min(kRowsAtOnce, rows - row)),
                   Resample::Nearest, wanted.cells.data() + layout.line * static_cast<std::size_t>(row),
                   layout);
    }
    strip_ = std::move(wanted);
    return true;
}

void ReadAhead::Stop() {
    stopped_ = true;
    strip_ = {};
}

void ReadAhead::Read(RasterLayer& layer, std::span<const int> bands, GDALDataType type,
                     const TileWindow& window, Resample resample, unsigned char* target) {
    const Layout layout = Packed(type, bands.size(), window.columns);
    if (window.IsExact() && !stopped_) {
        Strip wanted{{bands.begin(), bands.end()},
                     type,
                     static_cast<int>(window.left),
                     static_cast<int>(window.top),
                     static_cast<int>(window.right),
                     static_cast<int>(window.bottom),
                     {}};
        const bool follows = Follows(window, layer.Width());
        if (Holds(wanted) || (follows && Fetch(layer, wanted))) {
            const Layout from = Packed(type, bands.size(), strip_.right - strip_.left);
            const unsigned char* source = strip_.cells.data() +
                                          from.line * static_cast<std::size_t>(wanted.top - strip_.top) +
                                          from.pixel * static_cast<std::size_t>(wanted.left - strip_.left);
            for (int row = 0; row < window.rows; ++row, source += from.line, target += layout.line) {
                std::memcpy(target, source, layout.line);
            }
            return;
        }
    }
    ReadWindow(layer.Dataset(), bands, window, resample, target, layout);
}

}  // namespace orvo::gdal
