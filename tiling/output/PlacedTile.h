// A tile that is there, and where it lies.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/Types.h"

namespace orvo::tiling {

/// Edges in map units.
struct Rectangle {
    double xMin = 0;
    double yMin = 0;
    double xMax = 0;
    double yMax = 0;
};

struct PlacedTile {
    std::string name;         ///< of the file, relative to the output folder
    std::int64_t column = 1;  ///< of the grid, counted from 1 at the upper left corner
    std::int64_t row = 1;
    Rectangle envelope;   ///< as recorded by the run
    Rectangle placement;  ///< what the pixels show, edge to edge; may differ from the envelope by rounding
    Long width = 0;       ///< pixels
    Long height = 0;
    std::string id{};  ///< the tile's name in the index; empty for none
    Long x = 0;        ///< the grid's own numbers where tiles have names, from 1 at the lower left corner
    Long y = 0;
};

/// Hands out tiles one after the other, the same whenever it is asked.
using TileList = std::function<void(const std::function<void(const PlacedTile&)>& take)>;

}  // namespace orvo::tiling
