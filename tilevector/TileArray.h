// The tile records of a grid, as an array with the runtime's rules for subscripts.
#pragma once

#include <optional>
#include <vector>

#include "platform/RuntimeError.h"
#include "tilevector/clsVectorTile.h"

namespace orvo {

/// Two dimensions that start at 0: column, row. Elements are empty until a record is put there; the array
/// holds the records themselves, 56 bytes each.
class TileArray {
  public:
    /// @param lastColumn, lastRow the upper bounds; one below 0 fails with number 9
    TileArray(Long lastColumn, Long lastRow) : lastColumn_(lastColumn), lastRow_(lastRow) {
        if (lastColumn < 0 || lastRow < 0) throw RuntimeError(Fault::SubscriptOutOfRange);
        const std::size_t columns = static_cast<std::size_t>(lastColumn) + 1;
        const std::size_t rows = static_cast<std::size_t>(lastRow) + 1;
        if (columns > tiles_.max_size() / rows) throw RuntimeError(Fault::OutOfMemory);
        tiles_ = std::vector<std::optional<clsVectorTile>>(columns * rows);
    }

    Long LastColumn() const { return lastColumn_; }
    Long LastRow() const { return lastRow_; }

    /// The element; number 9 outside the bounds.
    std::optional<clsVectorTile>& At(Long column, Long row) {
        if (column < 0 || column > lastColumn_ || row < 0 || row > lastRow_) {
            throw RuntimeError(Fault::SubscriptOutOfRange);
        }
        const std::size_t columns = static_cast<std::size_t>(lastColumn_) + 1;
        return tiles_[static_cast<std::size_t>(row) * columns + static_cast<std::size_t>(column)];
    }

    /// The record; number 9 outside the bounds, 91 where there is none.
    clsVectorTile& Tile(Long column, Long row) {
        auto& element = At(column, row);
        if (!element) throw RuntimeError(Fault::ObjectNotSet);
        return *element;
    }

  private:
    Long lastColumn_;
    Long lastRow_;
    std::vector<std::optional<clsVectorTile>> tiles_;  ///< row by row
};

}  // namespace orvo
