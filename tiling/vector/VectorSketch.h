// A light drawing of a layer's features.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "tiling/vector/geometry/Shape.h"

namespace orvo::tiling {

/// Vertices fall on a raster over the area, which gets coarser when they become too many: a drawing never
/// holds more than a fixed number of them, however many features there are.
class VectorSketch {
  public:
    VectorSketch(const geos::Bounds& area, std::size_t mostVertices) : area_(area), most_(mostVertices) {}

    void Add(const geos::Shape& shape);

    /// What the preview page draws, as one line of JSON: "area" (edges), "cell" (side of a raster cell in map
    /// units), "leftOut" (shapes that had no room any more) and "shapes", each a kind ("p", "l" or "a") and
    /// paths: lists x, y, dx, dy, dx, dy
    /// ... in cells from the south-west corner.
    std::string ToJson() const;

  private:
    struct Spot {
        std::int32_t x, y;
        bool operator==(const Spot&) const = default;
    };
    using Path = std::vector<Spot>;
    struct Drawn {
        char kind;
        std::vector<Path> paths;
    };

    double CellSize() const;  ///< side of a raster cell in map units
    Spot SpotOf(const geos::Coordinate& c) const;
    bool IsNewDot(const Drawn& drawn);
    void Keep(Drawn drawn);
    void Coarsen();
    static void AddSpot(Path& path, Spot spot);

    geos::Bounds area_;
    std::size_t most_;
    int resolution_ = 8192;  ///< cells along the longer side
    std::size_t vertices_ = 0;
    std::int64_t leftOut_ = 0;
    std::vector<Drawn> drawn_;
    std::unordered_set<std::uint64_t> dots_;  ///< cells that hold a shape of one spot
};

}  // namespace orvo::tiling
