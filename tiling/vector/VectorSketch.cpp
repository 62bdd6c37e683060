#include "tiling/vector/VectorSketch.h"

#include <algorithm>
#include <cmath>

#include "tiling/output/JsonText.h"

namespace orvo::tiling {
namespace {

constexpr int kCoarsest = 512;
constexpr double kFarOut = 1 << 24;  ///< cells; what reaches out of the area is drawn this far

}  // namespace

double VectorSketch::CellSize() const {
    return std::max(area_.xMax - area_.xMin, area_.yMax - area_.yMin) / resolution_;
}

VectorSketch::Spot VectorSketch::SpotOf(const geos::Coordinate& c) const {
    const auto spot = [cell = CellSize()](double distance) {
        return static_cast<std::int32_t>(std::lround(std::clamp(distance / cell, -kFarOut, kFarOut)));
    };
    return {spot(c.x - area_.xMin), spot(c.y - area_.yMin)};
}

/// Drops what does not move, and the middle of three in line.
void VectorSketch::AddSpot(Path& path, Spot spot) {
    if (!path.empty() && path.back() == spot) return;
    if (path.size() > 1) {
        const Spot a = path[path.size() - 2];
        const Spot b = path.back();
        const auto ux = std::int64_t{b.x} - a.x, uy = std::int64_t{b.y} - a.y;
        const auto vx = std::int64_t{spot.x} - b.x, vy = std::int64_t{spot.y} - b.y;
        if (ux * vy == uy * vx && ux * vx + uy * vy > 0) path.pop_back();
    }
    path.push_back(spot);
}

void VectorSketch::Add(const geos::Shape& shape) {
    Drawn drawn{shape.type == GeometryType::Polygon    ? 'a'
                : shape.type == GeometryType::Polyline ? 'l'
                                                       : 'p',
                {}};
    for (std::size_t n = 0; n < shape.PathCount(); ++n) {
        Path path;
        for (const geos::Coordinate& c : shape.PathAt(n)) AddSpot(path, SpotOf(c));
        drawn.paths.push_back(std::move(path));
    }
    if (shape.PathCount() == 0) {
        for (const geos::Coordinate& c : shape.Points()) drawn.paths.push_back({SpotOf(c)});
    }
    Keep(std::move(drawn));
    while (vertices_ > most_ && resolution_ > kCoarsest) Coarsen();
}

/// Paths of one spot are drawn once for each cell, and not at all where the shape has longer ones.
bool VectorSketch::IsNewDot(const Drawn& drawn) {
    const Spot spot = drawn.paths.front().front();
    const auto key = (static_cast<std::uint64_t>(static_cast<std::uint32_t>(spot.x)) << 32U) |
                     static_cast<std::uint32_t>(spot.y);
    return dots_.insert(key).second;
}

void VectorSketch::Keep(Drawn drawn) {
    if (drawn.kind != 'p') {
        const auto isSpot = [](const Path& path) { return path.size() < 2; };
        const bool allSpots = std::ranges::all_of(drawn.paths, isSpot);
        if (allSpots && drawn.paths.size() > 1) drawn.paths.resize(1);
        if (!allSpots) std::erase_if(drawn.paths, isSpot);
    }
    if (drawn.paths.empty()) return;
    if (drawn.paths.size() == 1 && drawn.paths.front().size() == 1 && !IsNewDot(drawn)) return;
    std::size_t count = 0;
    for (const Path& path : drawn.paths) count += path.size();
    if (resolution_ <= kCoarsest && vertices_ + count > most_) {
        ++leftOut_;
        return;
    }
    vertices_ += count;
    drawn_.push_back(std::move(drawn));
}

void VectorSketch::Coarsen() {
    resolution_ /= 2;
    vertices_ = 0;
    dots_.clear();
    std::vector<Drawn> finer;
    finer.swap(drawn_);
    for (Drawn& old : finer) {
        for (Path& path : old.paths) {
            Path coarse;
            for (const Spot& spot : path) AddSpot(coarse, {spot.x / 2, spot.y / 2});
            path = std::move(coarse);
        }
        Keep(std::move(old));
    }
}

std::string VectorSketch::ToJson() const {
    Json shapes = Json::array();
    for (const Drawn& drawn : drawn_) {
        Json& shape = shapes.emplace_back(Json::array({std::string(1, drawn.kind)}));
        for (const Path& path : drawn.paths) {
            Json& steps = shape.emplace_back(Json::array());
            Spot last{0, 0};
            for (const Spot& spot : path) {
                steps.push_back(spot.x - last.x);
                steps.push_back(spot.y - last.y);
                last = spot;
            }
        }
    }
    return TextOf({{"area", {area_.xMin, area_.yMin, area_.xMax, area_.yMax}},
                   {"cell", CellSize()},
                   {"leftOut", leftOut_},
                   {"shapes", std::move(shapes)}});
}

}  // namespace orvo::tiling
