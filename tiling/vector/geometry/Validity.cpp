#include "tiling/vector/geometry/Validity.h"

#include <algorithm>

#include "tiling/vector/geometry/Segment.h"

namespace orvo::geos {
namespace {

/// One segment of a ring, in the order of a sweep from the west.
struct Step {
    double xMin, xMax, yMin, yMax;
    const Coordinate* from;  ///< the other end follows it
    std::size_t ring;
};

bool IsBeside(const Step& a, const Step& b) {
    return (Side(a.from[0], a.from[1], b.from[0]) * Side(a.from[0], a.from[1], b.from[1]) > 0) ||
           (Side(b.from[0], b.from[1], a.from[0]) * Side(b.from[0], b.from[1], a.from[1]) > 0);
}

/// The next segment of a ring does not run back over this one.
bool TurnsAway(const Step& first, const Step& second) {
    const Coordinate &a = first.from[0], &b = first.from[1], &c = second.from[1];
    return Side(a, b, c) != 0 || (b.x - a.x) * (c.x - b.x) + (b.y - a.y) * (c.y - b.y) > 0;
}

class Sweep {
  public:
    explicit Sweep(const Shape& areas) : areas_(areas) {
        steps_.reserve(areas.Points().size());
        for (std::size_t n = 0; n < areas.PathCount(); ++n) {
            const Shape::Path ring = areas.PathAt(n);
            for (std::size_t i = 1; i < ring.size(); ++i) Add(ring[i - 1], ring[i], n);
        }
        std::ranges::sort(steps_, {}, &Step::xMin);
    }

    bool IsClear() const {
        std::size_t left = kMostPairs * steps_.size();
        for (auto a = steps_.begin(); a != steps_.end(); ++a) {
            if (SamePlace(a->from[0], a->from[1])) return false;
            for (auto b = a + 1; b != steps_.end() && b->xMin <= a->xMax; ++b) {
                if (--left == 0) return false;
                if (b->yMin <= a->yMax && a->yMin <= b->yMax && !AreClear(*a, *b)) return false;
            }
        }
        return true;
    }

  private:
    static constexpr std::size_t kMostPairs = 200;  ///< a segment; beyond that an index pays

    void Add(const Coordinate& a, const Coordinate& b, std::size_t ring) {
        steps_.push_back(
            {std::min(a.x, b.x), std::max(a.x, b.x), std::min(a.y, b.y), std::max(a.y, b.y), &a, ring});
    }

    bool Follows(const Step& a, const Step& b) const {
        const Shape::Path ring = areas_.PathAt(a.ring);
        const Coordinate* next = a.from + 1 == &ring.back() ? &ring.front() : a.from + 1;
        return a.ring == b.ring && b.from == next;
    }

    bool AreClear(const Step& a, const Step& b) const {
        if (IsBeside(a, b)) return true;
        if (Follows(a, b)) return TurnsAway(a, b);
        return Follows(b, a) && TurnsAway(b, a);
    }

    const Shape& areas_;
    std::vector<Step> steps_;
};

enum class Place { Inside, Outside, Doubt };

/// Where a ring lies to another one that it clearly does not meet.
Place PlaceOf(Shape::Path ring, Shape::Path other) {
    const Coordinate& c = ring.front();
    bool isInside = false;
    for (std::size_t i = 1; i < other.size(); ++i) {
        const Coordinate &a = other[i - 1], &b = other[i];
        if ((a.y > c.y) == (b.y > c.y)) continue;
        const int side = Side(a, b, c);
        if (side == 0) return Place::Doubt;
        if ((side > 0) == (b.y > a.y)) isInside = !isInside;
    }
    return isInside ? Place::Inside : Place::Outside;
}

/// The rings of one kind lie beside each other.
bool AreApart(const Shape& areas, const std::vector<std::size_t>& rings) {
    for (const std::size_t a : rings)
        for (const std::size_t b : rings)
            if (a != b && areas.PathExtent(a).Holds(areas.PathExtent(b)) &&
                PlaceOf(areas.PathAt(b), areas.PathAt(a)) != Place::Outside)
                return false;
    return true;
}

/// Shells beside shells, holes beside holes, and each hole in its shell.
bool AreNestedWell(const Shape& areas) {
    std::vector<std::size_t> shells, holes;
    for (std::size_t area = 0; area < areas.AreaCount(); ++area) {
        const std::size_t shell = areas.AreaBegin(area);
        shells.push_back(shell);
        holes.clear();
        for (std::size_t n = shell + 1; n < areas.AreaEnd(area); ++n) {
            if (PlaceOf(areas.PathAt(n), areas.PathAt(shell)) != Place::Inside) return false;
            holes.push_back(n);
        }
        if (!AreApart(areas, holes)) return false;
    }
    return AreApart(areas, shells);
}

}  // namespace

bool IsPlainlyValid(const Shape& areas) {
    constexpr std::size_t kManyRings = 300;
    return areas.PathCount() < kManyRings && Sweep(areas).IsClear() && AreNestedWell(areas);
}

}  // namespace orvo::geos
