#include "tiling/vector/geometry/Heights.h"

#include <algorithm>
#include <cmath>

namespace orvo::geos {
namespace {

/// The nearest place of a segment: how far off (squared), and the height there.
struct Nearest {
    double distance;
    double z;
};

Nearest NearestOn(const Coordinate& a, const Coordinate& b, const Coordinate& c) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double length = dx * dx + dy * dy;
    double share = length > 0 ? ((c.x - a.x) * dx + (c.y - a.y) * dy) / length : 0;
    share = std::clamp(share, 0.0, 1.0);
    const double offX = a.x + dx * share - c.x, offY = a.y + dy * share - c.y;
    if (share == 0) return {offX * offX + offY * offY, a.z};
    if (share == 1) return {offX * offX + offY * offY, b.z};
    return {offX * offX + offY * offY, a.z + (b.z - a.z) * share};
}

/// The height of the source's borders at a place; no number where none runs through it.
double HeightAt(const Shape& source, const Coordinate& c) {
    const Bounds& all = source.Extent();
    const double near =
        1e-9 * std::max({std::abs(all.xMin), std::abs(all.yMin), std::abs(all.xMax), std::abs(all.yMax)});
    Nearest best{near * near, std::numeric_limits<double>::quiet_NaN()};
    for (std::size_t n = 0; n < source.PathCount(); ++n) {
        if (!source.PathExtent(n).GrownBy(near, near).Holds(c)) continue;
        const Shape::Path path = source.PathAt(n);
        for (std::size_t i = 1; i < path.size(); ++i) {
            const Nearest found = NearestOn(path[i - 1], path[i], c);
            if (found.distance < best.distance || (found.distance == 0 && SamePlace(path[i], c)))
                best = found;
        }
    }
    return best.z;
}

double Distance(const Coordinate& a, const Coordinate& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// Fills the unknown heights of a closed ring from their known neighbours, evenly by distance.
void FillHeights(std::vector<Coordinate>& ring, double otherwise) {
    const std::size_t count = ring.size() - 1;
    std::size_t known = 0;
    while (known < count && std::isnan(ring[known].z)) ++known;
    if (known == count) {
        for (Coordinate& c : ring) c.z = otherwise;
        return;
    }
    for (std::size_t done = 0; done < count;) {
        const std::size_t from = known + done;
        double whole = 0;
        std::size_t steps = 0;
        do {
            whole += Distance(ring[(from + steps) % count], ring[(from + steps + 1) % count]);
            ++steps;
        } while (std::isnan(ring[(from + steps) % count].z));
        const double a = ring[from % count].z, b = ring[(from + steps) % count].z;
        double way = 0;
        for (std::size_t n = 1; n < steps; ++n) {
            way += Distance(ring[(from + n - 1) % count], ring[(from + n) % count]);
            ring[(from + n) % count].z = a + (b - a) * way / whole;
        }
        done += steps;
    }
    ring.back().z = ring.front().z;
}

}  // namespace

Shape WithHeightsOf(const Shape& source, const Shape& rings) {
    Shape result = rings.EmptyCopy();
    for (std::size_t area = 0; area < rings.AreaCount(); ++area) {
        for (std::size_t n = rings.AreaBegin(area); n < rings.AreaEnd(area); ++n) {
            std::vector<Coordinate> ring(rings.PathAt(n).begin(), rings.PathAt(n).end());
            for (Coordinate& c : ring)
                if (std::isnan(c.z)) c.z = HeightAt(source, c);
            FillHeights(ring, source.meanZ);
            result.AddPath(ring);
        }
        result.EndArea();
    }
    return result;
}

}  // namespace orvo::geos
