// The parts of a grid that several machines cut.
#pragma once

#include <cstdint>

namespace orvo::tiling {

/// Which of how many parts of a job, from 1; none for a whole run.
struct PartNumber {
    int part = 0, parts = 0;
    bool operator==(const PartNumber&) const = default;
};

/// Cells of a grid: columns and rows from 0 on at the corner that it counts from.
struct CellRange {
    std::int64_t column = 0;
    std::int64_t row = 0;
    std::int64_t columns = 0;
    std::int64_t rows = 0;
    std::int64_t Count() const { return columns * rows; }
};

/// A part of the cells: whole rows, or whole columns where there are more of these. Fails with UsageError
/// where there are more parts than these.
CellRange PartOfRange(CellRange cells, const PartNumber& part);

/// The part that a cell belongs to, from 1.
int PartOfCell(const CellRange& cells, std::int64_t column, std::int64_t row, int parts);

}  // namespace orvo::tiling
