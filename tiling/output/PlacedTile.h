// A tile that is there, and where it lies.
#pragma once

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
    std::string name;     ///< of the file, without folder
    Long column = 0;      ///< of the grid, counted from 0
    Long row = 0;         ///< counted from the top
    Rectangle envelope;   ///< as recorded by the run
    Rectangle placement;  ///< what the pixels show, edge to edge; may differ from the envelope by rounding
    Long width = 0;       ///< pixels
    Long height = 0;
    std::string id{};  ///< the tile's name in the index; empty for none
};

}  // namespace orvo::tiling
