#include "tiling/vector/geometry/CutLines.h"

#include <algorithm>

#include "tiling/vector/geometry/Segment.h"

namespace orvo::geos {
namespace {

/// Follows one line and collects its sections.
class LineCutter {
  public:
    explicit LineCutter(const Bounds& rectangle) : rectangle_(rectangle) {}

    void Cut(Shape::Path line, Shape& into) {
        sections_.clear();
        current_.clear();
        const bool startsInside = Outcode(line.front(), rectangle_) == 0;
        if (startsInside) current_.push_back(line.front());
        for (std::size_t n = 1; n < line.size(); ++n) Follow(line[n - 1], line[n]);
        const bool endsInside = !current_.empty();
        End();
        const bool isClosed = SamePlace(line.front(), line.back());
        if (isClosed && startsInside && endsInside && sections_.size() > 1) JoinLastToFirst();
        for (const auto& section : sections_) into.AddPath(section);
    }

  private:
    void Follow(const Coordinate& a, const Coordinate& b) {
        const auto held = ClipSegment(a, b, rectangle_);
        if (!held) return End();
        if (held->entry) {
            End();
            current_.push_back(*held->entry);
        }
        const Coordinate& next = held->exit ? *held->exit : b;
        if (!SamePlace(current_.back(), next)) current_.push_back(next);
        if (held->exit) End();
    }

    void End() {
        if (current_.size() > 1) sections_.push_back(current_);
        current_.clear();
    }

    void JoinLastToFirst() {
        auto& first = sections_.front();
        auto& last = sections_.back();
        if (!SamePlace(last.back(), first.front())) return;
        last.insert(last.end(), first.begin() + 1, first.end());
        sections_.erase(sections_.begin());
    }

    Bounds rectangle_;
    std::vector<std::vector<Coordinate>> sections_;
    std::vector<Coordinate> current_;
};

}  // namespace

Shape CutPoints(const Shape& shape, const Bounds& rectangle) {
    Shape cut = shape.EmptyCopy();
    for (const Coordinate& c : shape.Points())
        if (rectangle.Holds(c)) cut.AddPoint(c);
    return cut;
}

Shape CutLines(const Shape& shape, const Bounds& rectangle) {
    Shape cut = shape.EmptyCopy();
    LineCutter cutter(rectangle);
    for (std::size_t n = 0; n < shape.PathCount(); ++n) {
        const Bounds& extent = shape.PathExtent(n);
        if (!extent.Meets(rectangle)) continue;
        if (rectangle.Holds(extent)) {
            cut.AddPath(shape.PathAt(n));
        } else {
            cutter.Cut(shape.PathAt(n), cut);
        }
    }
    return cut;
}

}  // namespace orvo::geos
