// What a grid over a vector layer will be, known before it is built.
#pragma once

#include <cstdint>

#include "platform/Types.h"

namespace orvo::tiling {

struct GridPlan {
    Long width = 0;  ///< of a tile, whole map units
    Long height = 0;
    std::int64_t columns = 0;
    std::int64_t rows = 0;
    std::int64_t emptyColumns = 0;  ///< at the east, beyond the layer, where counts were asked for
    std::int64_t emptyRows = 0;     ///< at the north
    double east = 0;                ///< where the layer ends
    double north = 0;
};

}  // namespace orvo::tiling
