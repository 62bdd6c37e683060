#include "tiling/vector/geometry/CutPolygons.h"

#include <algorithm>
#include <cmath>

#include "tiling/vector/geometry/Segment.h"

namespace orvo::geos {
namespace {

/// Coordinates nearer than this share of the largest one count as rounding: some thousand units in the last
/// place.
constexpr double kRounding = 1e-12;

/// The run of one ring through the inside of the rectangle, from edge to edge.
struct Run {
    std::size_t begin, end;  ///< its vertices among those collected, both crossings with them
    Edge firstEdge, lastEdge;
};

/// One end of a run, ordered along the edges from the corner at the bottom left, inside on the left.
struct End {
    Edge edge;
    double along;  ///< grows in the direction of the walk
    std::size_t run;
    bool isLast;
};

double Along(Edge edge, const Coordinate& c) {
    switch (edge) {
        case Edge::Bottom:
            return c.x;
        case Edge::Right:
            return c.y;
        case Edge::Top:
            return -c.x;
        case Edge::Left:
            break;
    }
    return -c.y;
}

/// Cuts one area: a shell with its holes.
class AreaCutter {
  public:
    explicit AreaCutter(const Bounds& rectangle)
        : r_(rectangle),
          near_(kRounding *
                std::max({std::abs(r_.xMin), std::abs(r_.xMax), std::abs(r_.yMin), std::abs(r_.yMax)})),
          outer_(r_.GrownBy(near_, near_)),
          inner_(r_.GrownBy(-near_, -near_)) {}

    /// False in doubt; `into` is then of no use.
    bool Cut(const Shape& shape, std::size_t area, Shape& into) {
        Clear();
        for (std::size_t n = shape.AreaBegin(area); n < shape.AreaEnd(area); ++n) {
            if (r_.Holds(shape.PathExtent(n)) && IsClearOfEdges(shape.PathExtent(n))) {
                inside_.push_back(n);
            } else if (!Follow(shape.PathAt(n))) {
                return false;
            }
        }
        if (!inside_.empty() && inside_.front() == shape.AreaBegin(area)) return AddWhole(shape, area, into);
        if (!Link(shape)) return false;
        return AddShells(shape, into);
    }

  private:
    void Clear() {
        vertices_.clear();
        runs_.clear();
        ends_.clear();
        shells_.clear();
        shellVertices_.clear();
        inside_.clear();
        cornerIsInside_ = false;
    }

    bool IsClearOfEdges(const Bounds& b) const { return inner_.Holds(b); }
    bool IsNearEdge(const Coordinate& c) const { return outer_.Holds(c) && !inner_.Holds(c); }

    /// Collects the ring's runs and counts how often it passes left of the corner.
    bool Follow(Shape::Path ring) {
        const std::size_t count = ring.size() - 1;
        std::size_t start = 0;
        while (start < count && OutsideOf(ring[start], r_) == 0) ++start;
        if (start == count) return false;  // held as a whole, but near an edge
        for (std::size_t n = 0; n < count; ++n) {
            const Coordinate& a = ring[(start + n) % count];
            const Coordinate& b = ring[(start + n + 1) % count];
            if (IsNearEdge(b) || !CountAtCorner(a, b) || !FollowSegment(a, b)) return false;
        }
        return true;
    }

    bool FollowSegment(const Coordinate& a, const Coordinate& b) {
        if ((OutsideOf(a, r_) & OutsideOf(b, r_)) != 0) return true;
        const auto held = HeldStretch(a, b, r_);
        if (!held) return !PassesCorner(a, b);
        if (held->enters) {
            if (IsNearCorner(held->enters->at)) return false;
            runs_.push_back({vertices_.size(), 0, held->enters->edge, Edge::Bottom});
            vertices_.push_back(held->enters->at);
        }
        if (!held->leaves) {
            vertices_.push_back(b);
            return true;
        }
        if (IsNearCorner(held->leaves->at)) return false;
        vertices_.push_back(held->leaves->at);
        runs_.back().end = vertices_.size();
        runs_.back().lastEdge = held->leaves->edge;
        return true;
    }

    /// Whether a segment that goes around a corner comes too near.
    bool PassesCorner(const Coordinate& a, const Coordinate& b) const {
        const double dx = b.x - a.x, dy = b.y - a.y;
        const double tooNear = near_ * (std::abs(dx) + std::abs(dy));
        for (int n = 0; n < 4; ++n) {
            const Coordinate corner = Corner(n);
            if (std::abs(dx * (corner.y - a.y) - dy * (corner.x - a.x)) <= tooNear) return true;
        }
        return false;
    }

    /// A ray from the bottom left corner to the left: what it meets tells whether the corner is inside.
    bool CountAtCorner(const Coordinate& a, const Coordinate& b) {
        if ((a.y > r_.yMin) == (b.y > r_.yMin)) return true;
        if (a.x > r_.xMin + near_ && b.x > r_.xMin + near_) return true;
        const double x = a.x + (b.x - a.x) * (r_.yMin - a.y) / (b.y - a.y);
        if (std::abs(x - r_.xMin) <= near_) return false;
        if (x < r_.xMin) cornerIsInside_ = !cornerIsInside_;
        return true;
    }

    bool IsNearCorner(const Coordinate& c) const {
        return std::min(c.x - r_.xMin, r_.xMax - c.x) <= near_ &&
               std::min(c.y - r_.yMin, r_.yMax - c.y) <= near_;
    }

    /// Joins the runs along the edges. Inside and outside take turns there, from what the corner is.
    bool Link(const Shape& shape) {
        if (runs_.empty()) {
            if (cornerIsInside_) AddRectangle(shape.meanZ);
            return true;
        }
        if (!SortEnds()) return false;
        used_.assign(ends_.size(), false);
        for (std::size_t n = 0; n < ends_.size(); ++n)
            if (StartsInside(n) && !used_[n] && !LinkFrom(n)) return false;
        return true;
    }

    bool SortEnds() {
        for (std::size_t n = 0; n < runs_.size(); ++n) {
            const Run& run = runs_[n];
            ends_.push_back({run.firstEdge, Along(run.firstEdge, vertices_[run.begin]), n, false});
            ends_.push_back({run.lastEdge, Along(run.lastEdge, vertices_[run.end - 1]), n, true});
        }
        std::ranges::sort(ends_, [](const End& a, const End& b) {
            return a.edge != b.edge ? a.edge < b.edge : a.along < b.along;
        });
        const auto tooNear = [this](const End& a, const End& b) {
            return a.edge == b.edge && b.along - a.along <= near_;
        };
        if (std::ranges::adjacent_find(ends_, tooNear) != ends_.end()) return false;
        partner_.resize(ends_.size());
        std::vector<std::size_t> first(runs_.size());
        std::vector<bool> seen(runs_.size());
        for (std::size_t n = 0; n < ends_.size(); ++n) {
            const std::size_t run = ends_[n].run;
            if (seen[run]) {
                partner_[n] = first[run];
                partner_[first[run]] = n;
            }
            first[run] = n;
            seen[run] = true;
        }
        return true;
    }

    bool StartsInside(std::size_t end) const { return (end % 2 == 1) == cornerIsInside_; }

    /// From one end along the edge to the next, through its run, and so on until the ring closes.
    bool LinkFrom(std::size_t start) {
        const std::size_t begin = shellVertices_.size();
        std::size_t at = start;
        do {
            used_[at] = true;
            const std::size_t next = (at + 1) % ends_.size();
            AddCorners(ends_[at], ends_[next]);
            AddRun(ends_[next]);
            at = partner_[next];
            if (!StartsInside(at)) return false;  // the runs cross each other
        } while (at != start);
        CloseShell(begin);
        return true;
    }

    const Coordinate& VertexOf(const End& end) const {
        const Run& run = runs_[end.run];
        return end.isLast ? vertices_[run.end - 1] : vertices_[run.begin];
    }

    Coordinate Corner(int n) const {
        switch (n % 4) {
            case 0:
                return {r_.xMin, r_.yMin};
            case 1:
                return {r_.xMax, r_.yMin};
            case 2:
                return {r_.xMax, r_.yMax};
            default:
                return {r_.xMin, r_.yMax};
        }
    }

    /// The corners passed on the way; their heights change evenly from one end to the other.
    void AddCorners(const End& from, const End& to) {
        const Coordinate &a = VertexOf(from), &b = VertexOf(to);
        const int first = static_cast<int>(from.edge) + 1;
        int last = static_cast<int>(to.edge);
        if (last < first - 1 || (last == first - 1 && to.along < from.along)) last += 4;
        double way = 0;
        Coordinate before = a;
        const std::size_t begin = shellVertices_.size();
        for (int n = first; n <= last; ++n) {
            Coordinate corner = Corner(n);
            way += std::hypot(corner.x - before.x, corner.y - before.y);
            corner.z = way;
            shellVertices_.push_back(corner);
            before = corner;
        }
        way += std::hypot(b.x - before.x, b.y - before.y);
        for (std::size_t n = begin; n < shellVertices_.size(); ++n)
            shellVertices_[n].z = a.z + (b.z - a.z) * shellVertices_[n].z / way;
    }

    void AddRun(const End& from) {
        const Run& run = runs_[from.run];
        const auto begin = vertices_.begin() + static_cast<std::ptrdiff_t>(run.begin);
        const auto end = vertices_.begin() + static_cast<std::ptrdiff_t>(run.end);
        if (from.isLast) {
            shellVertices_.insert(shellVertices_.end(), std::reverse_iterator(end),
                                  std::reverse_iterator(begin));
        } else {
            shellVertices_.insert(shellVertices_.end(), begin, end);
        }
    }

    void AddRectangle(double meanZ) {
        const std::size_t begin = shellVertices_.size();
        for (int n = 0; n < 4; ++n) {
            Coordinate corner = Corner(n);
            corner.z = meanZ;
            shellVertices_.push_back(corner);
        }
        CloseShell(begin);
    }

    void CloseShell(std::size_t begin) {
        shellVertices_.emplace_back(shellVertices_[begin]);
        shells_.push_back({begin, shellVertices_.size()});
    }

    static bool AddWhole(const Shape& shape, std::size_t area, Shape& into) {
        for (std::size_t n = shape.AreaBegin(area); n < shape.AreaEnd(area); ++n)
            into.AddPath(shape.PathAt(n));
        into.EndArea();
        return true;
    }

    /// Each hole that was not cut goes to the shell around it.
    bool AddShells(const Shape& shape, Shape& into) {
        std::size_t placed = 0;
        for (const auto& [begin, end] : shells_) {
            const Shape::Path shell = Shape::Path(shellVertices_).subspan(begin, end - begin);
            into.AddPath(shell);
            for (const std::size_t hole : inside_) {
                if (shells_.size() > 1 && !IsInRing(shape.PathAt(hole).front(), shell)) continue;
                into.AddPath(shape.PathAt(hole));
                ++placed;
            }
            into.EndArea();
        }
        return placed == inside_.size();
    }

    Bounds r_;
    double near_;
    Bounds outer_, inner_;
    std::vector<Coordinate> vertices_;
    std::vector<Run> runs_;
    std::vector<End> ends_;
    std::vector<std::size_t> partner_;
    std::vector<bool> used_;
    struct Shell {
        std::size_t begin, end;
    };
    std::vector<Shell> shells_;
    std::vector<Coordinate> shellVertices_;
    std::vector<std::size_t> inside_;  ///< rings that the rectangle holds as they are
    bool cornerIsInside_ = false;
};

}  // namespace

std::optional<Shape> CutPolygons(const Shape& shape, const Bounds& rectangle) {
    Shape cut = shape.EmptyCopy();
    AreaCutter cutter(rectangle);
    for (std::size_t n = 0; n < shape.AreaCount(); ++n) {
        if (!shape.PathExtent(shape.AreaBegin(n)).Meets(rectangle)) continue;
        if (!cutter.Cut(shape, n, cut)) return std::nullopt;
    }
    return cut;
}

}  // namespace orvo::geos
