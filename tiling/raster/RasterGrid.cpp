#include "tiling/raster/RasterGrid.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "platform/RuntimeError.h"
#include "support/Arithmetic.h"
#include "tiling/Errors.h"
#include "tiling/output/Numbers.h"

namespace orvo::tiling {
namespace {

constexpr double kSamePlace = 1e-6;  ///< of a pixel: a deviation below is the arithmetic's
constexpr std::int64_t kMostColumns = std::int64_t{1} << 40;

double Snapped(double pixels) {
    const double whole = std::round(pixels);
    return std::abs(pixels - whole) <= kSamePlace ? whole : pixels;
}

/// The component's rounding: a fraction goes up, an odd whole number gains one.
Long PixelsOfSize(double size, Long pixels, double cell) {
    if (size == -1) return pixels;
    const std::string tile = "a tile of " + Digits(size) + " map units has ";
    Long found = 0;
    try {
        found = RoundUp(Divide(size, cell));
    } catch (const RuntimeError&) {
        throw UsageError(tile + "more pixels than 32 bits count; use -1 for the whole axis");
    }
    if (found < 1)
        throw UsageError(tile + "no pixels: a cell of the layer has " + Digits(cell) +
                         " map units; choose a greater size, or -1 for the whole axis");
    return found;
}

std::int64_t UpDivide(std::int64_t a, std::int64_t b) {
    return (a + b - 1) / b;
}

/// What the layer's system calls its unit, for more than one of them.
std::string UnitsOf(gdal::RasterLayer& layer) {
    const OGRSpatialReference* const system = layer.Dataset().GetSpatialRef();
    if (system == nullptr) return "map units";
    const char* name = nullptr;
    if (system->IsGeographic() != 0) {
        system->GetAngularUnits(&name);
    } else {
        system->GetLinearUnits(&name);
    }
    const std::string unit = name == nullptr ? "" : name;
    return unit.empty() || unit == "unknown" ? "map units" : unit + "s";
}

}  // namespace

RasterGrid::RasterGrid(gdal::RasterLayer& layer, const RasterJob& job)
    : t_(layer.GeoTransform()),
      width_(layer.Width()),
      height_(layer.Height()),
      tileWidth_(job.tilePixelWidth != 0 ? job.tilePixelWidth : PixelsOfSize(job.tileWidth, width_, t_[1])),
      tileHeight_(job.tilePixelHeight != 0 ? job.tilePixelHeight
                                           : PixelsOfSize(job.tileHeight, height_, -t_[5])) {
    SetOrigin(job);
    SetVisited(job);
    if (job.part.parts > 0) visited_ = PartOfRange(whole_, job.part);
    SayPitch(layer, job);
}

void RasterGrid::SetOrigin(const RasterJob& job) {
    if (!job.origin) return;
    const double left = (t_[0] - job.origin->X) / t_[1];
    const double top = (t_[3] - job.origin->Y) / t_[5];
    if (!(std::abs(left) < kMostColumns && std::abs(top) < kMostColumns))
        throw UsageError("--origin lies too far from the layer");
    left_ = std::llround(left);
    top_ = std::llround(top);
    if (left_ < 0 || top_ < 0) {
        const double x =
            t_[0] - static_cast<double>(left_ + UpDivide(-std::min<std::int64_t>(left_, 0), tileWidth_) *
                                                    tileWidth_) *
                        t_[1];
        const double y =
            t_[3] - static_cast<double>(top_ + UpDivide(-std::min<std::int64_t>(top_, 0), tileHeight_) *
                                                   tileHeight_) *
                        t_[5];
        throw UsageError("--origin lies inside the layer, which begins at " + Digits(t_[0]) + " " +
                         Digits(t_[3]) + ": what lies left of it or above would be in no tile; --origin " +
                         Digits(x) + " " + Digits(y) + " gives the same grid");
    }
    if (std::abs(left - static_cast<double>(left_)) > kSamePlace ||
        std::abs(top - static_cast<double>(top_)) > kSamePlace)
        notices_.emplace_back(
            "--origin lies between two pixels of the layer: the grid is moved to the nearest one");
}

void RasterGrid::SetVisited(const RasterJob& job) {
    columns_ = UpDivide(left_ + width_, tileWidth_);
    rows_ = UpDivide(top_ + height_, tileHeight_);
    raster::TileWindow area = raster::ExactWindow(0, 0, width_, height_);
    if (job.clip) {
        const raster::TileWindow clip = PixelsOf(*job.clip);
        area = {std::max(area.left, clip.left),
                std::max(area.top, clip.top),
                std::min(area.right, clip.right),
                std::min(area.bottom, clip.bottom),
                0,
                0};
        if (!(area.left < area.right && area.top < area.bottom))
            throw UsageError("--clip " + Text(*job.clip) + " does not meet the layer, which lies at " +
                             Text(PlaceOf(raster::ExactWindow(0, 0, width_, height_))));
    }
    const auto first = [](double edge, std::int64_t offset, Long tile) {
        return (static_cast<std::int64_t>(std::floor(edge)) + offset) / tile;
    };
    const auto end = [](double edge, std::int64_t offset, Long tile) {
        return UpDivide(static_cast<std::int64_t>(std::ceil(edge)) + offset, tile);
    };
    visited_.column = first(area.left, left_, tileWidth_);
    visited_.row = first(area.top, top_, tileHeight_);
    visited_.columns = end(area.right, left_, tileWidth_) - visited_.column;
    visited_.rows = end(area.bottom, top_, tileHeight_) - visited_.row;
    whole_ = visited_;
}

/// Sizes in map units become whole pixels.
void RasterGrid::SayPitch(gdal::RasterLayer& layer, const RasterJob& job) {
    const auto differs = [](double asked, Long pixels, double cell) {
        return asked != -1 && std::abs(pixels * cell - asked) > kSamePlace * cell;
    };
    const bool wide = job.tilePixelWidth == 0 && differs(job.tileWidth, tileWidth_, t_[1]);
    const bool high = job.tilePixelHeight == 0 && differs(job.tileHeight, tileHeight_, -t_[5]);
    if (!wide && !high) return;
    std::ostringstream text;
    const double x = tileWidth_ * t_[1], y = tileHeight_ * -t_[5];
    text << x;
    if (std::abs(x - y) > kSamePlace * t_[1] || tileWidth_ != tileHeight_) text << " x " << y;
    text << ' ' << UnitsOf(layer) << " a tile, " << tileWidth_;
    if (tileWidth_ != tileHeight_) text << " x " << tileHeight_;
    text << " pixels: a fraction of a pixel goes up, and a whole odd number gains one; --tile-pixels sets "
            "them";
    notices_.push_back(text.str());
}

std::vector<CellRange> RasterGrid::Blocks() const {
    // Beyond that the size of a tile in half pixels would not fit into 32 bits.
    constexpr Long kMostPixels = 1 << 30;
    const std::int64_t columns = tileWidth_ > kMostPixels ? 1 : std::min(visited_.columns, kMostTiles);
    const std::int64_t rows = tileHeight_ > kMostPixels || columns < visited_.columns
                                  ? 1
                                  : std::max<std::int64_t>(1, kMostTiles / columns);
    std::vector<CellRange> blocks;
    for (std::int64_t y = 0; y < visited_.rows; y += rows) {
        for (std::int64_t x = 0; x < visited_.columns; x += columns)
            blocks.push_back({visited_.column + x, visited_.row + y, std::min(columns, visited_.columns - x),
                              std::min(rows, visited_.rows - y)});
    }
    return blocks;
}

PixelWindow RasterGrid::WindowOf(std::int64_t column, std::int64_t row) const {
    const std::int64_t x = column * tileWidth_ - left_, y = row * tileHeight_ - top_;
    const std::int64_t right = std::min<std::int64_t>(x + tileWidth_, width_);
    const std::int64_t bottom = std::min<std::int64_t>(y + tileHeight_, height_);
    const auto left = static_cast<Long>(std::max<std::int64_t>(x, 0));
    const auto top = static_cast<Long>(std::max<std::int64_t>(y, 0));
    return {left, top, static_cast<Long>(right) - left, static_cast<Long>(bottom) - top};
}

Rectangle RasterGrid::PlaceOf(const raster::TileWindow& window) const {
    return {t_[0] + window.left * t_[1], t_[3] + window.bottom * t_[5], t_[0] + window.right * t_[1],
            t_[3] + window.top * t_[5]};
}

Point RasterGrid::CornerOf(std::int64_t column, std::int64_t row) const {
    return {t_[0] + static_cast<double>(column * tileWidth_ - left_) * t_[1],
            t_[3] + static_cast<double>(row * tileHeight_ - top_) * t_[5]};
}

raster::TileWindow RasterGrid::PixelsOf(const Rectangle& area) const {
    return {Snapped((area.xMin - t_[0]) / t_[1]),
            Snapped((area.yMax - t_[3]) / t_[5]),
            Snapped((area.xMax - t_[0]) / t_[1]),
            Snapped((area.yMin - t_[3]) / t_[5]),
            0,
            0};
}

}  // namespace orvo::tiling
