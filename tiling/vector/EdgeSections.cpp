#include "tiling/vector/EdgeSections.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace orvo::tiling {
namespace {

using geos::Coordinate;
using Intervals = std::vector<geos::Interval>;
using Paths = std::vector<std::vector<Coordinate>>;

/// The edge below interval n is number n; the upper one of the last interval has the number behind.
std::optional<Long> EdgeAt(const Intervals& intervals, double place) {
    if (place == intervals.back().high) return static_cast<Long>(intervals.size());
    const auto found = std::ranges::lower_bound(intervals, place, {}, &geos::Interval::low);
    if (found == intervals.end() || found->low != place) return std::nullopt;
    return static_cast<Long>(found - intervals.begin());
}

class Collector {
  public:
    Collector(const geos::TileGrid& edges, const std::function<bool(Long, Long)>& holds)
        : edges_(edges), holds_(holds) {}

    void Add(const Coordinate& a, const Coordinate& b) {
        if (geos::SamePlace(a, b)) return;
        if (a.x == b.x) {
            if (const auto edge = EdgeAt(edges_.columns, a.x))
                Split(a, b, &Coordinate::y, edges_.rows, *edge);
        } else if (a.y == b.y) {
            if (const auto edge = EdgeAt(edges_.rows, a.y))
                Split(a, b, &Coordinate::x, edges_.columns, *edge);
        }
    }

    std::map<TilePair, Paths> paths;

  private:
    /// Cuts a segment on an edge at the edges across it.
    void Split(const Coordinate& a, const Coordinate& b, double Coordinate::*along, const Intervals& across,
               Long edge) {
        const double low = std::min(a.*along, b.*along);
        const double high = std::max(a.*along, b.*along);
        const auto first = std::ranges::upper_bound(across, low, {}, &geos::Interval::high);
        std::vector<Long> crossed;
        for (auto i = first; i != across.end() && i->low < high; ++i)
            crossed.push_back(static_cast<Long>(i - across.begin()));
        if (a.*along > b.*along) std::ranges::reverse(crossed);
        const auto at = [&](double place) {
            if (place == a.*along) return a;
            if (place == b.*along) return b;
            Coordinate c = a;
            c.*along = place;
            c.z += (b.z - a.z) * (place - a.*along) / (b.*along - a.*along);
            return c;
        };
        for (const Long n : crossed) {
            const auto& interval = across[static_cast<std::size_t>(n)];
            Coordinate from = at(std::max(low, interval.low));
            Coordinate to = at(std::min(high, interval.high));
            if (a.*along > b.*along) std::swap(from, to);
            Own(from, to, along == &Coordinate::y, edge, n);
        }
    }

    void Own(const Coordinate& from, const Coordinate& to, bool upright, Long edge, Long across) {
        const Long last = static_cast<Long>(upright ? edges_.columns.size() : edges_.rows.size()) - 1;
        const auto tile = [&](Long n) {
            return upright ? TilePair{n + 1, across + 1} : TilePair{across + 1, n + 1};
        };
        for (const Long beside : {edge - 1, edge}) {
            if (beside < 0 || beside > last) continue;
            const TilePair numbers = tile(beside);
            if (holds_(numbers.first, numbers.second)) return;
        }
        Paths& own = paths[tile(std::min(edge, last))];
        if (own.empty() || !geos::SamePlace(own.back().back(), from)) own.push_back({from});
        own.back().push_back(to);
    }

    const geos::TileGrid& edges_;
    const std::function<bool(Long, Long)>& holds_;
};

}  // namespace

std::map<TilePair, geos::Shape> EdgeSections(const geos::Shape& line, const geos::TileGrid& edges,
                                             const std::function<bool(Long column, Long row)>& holds) {
    Collector collector(edges, holds);
    for (std::size_t n = 0; n < line.PathCount(); ++n) {
        const geos::Shape::Path path = line.PathAt(n);
        for (std::size_t i = 1; i < path.size(); ++i) collector.Add(path[i - 1], path[i]);
    }
    std::map<TilePair, geos::Shape> sections;
    for (const auto& [tile, paths] : collector.paths) {
        geos::Shape& shape = sections.emplace(tile, line.EmptyCopy()).first->second;
        for (const auto& path : paths) shape.AddPath(path);
    }
    return sections;
}

}  // namespace orvo::tiling
