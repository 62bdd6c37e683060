#include "tiling/Parts.h"

#include <algorithm>
#include <string>

#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

bool IsByRows(const CellRange& cells) {
    return cells.rows >= cells.columns;
}

}  // namespace

CellRange PartOfRange(CellRange cells, const PartNumber& part) {
    const bool byRows = IsByRows(cells);
    std::int64_t &from = byRows ? cells.row : cells.column, &count = byRows ? cells.rows : cells.columns;
    if (part.parts > count)
        throw UsageError("--part: this grid has " + std::to_string(cells.columns) + " x " +
                         std::to_string(cells.rows) + " tiles; give at most " + std::to_string(count) +
                         " parts");
    const std::int64_t begin = count * (part.part - 1) / part.parts, end = count * part.part / part.parts;
    from += begin;
    count = end - begin;
    return cells;
}

int PartOfCell(const CellRange& cells, std::int64_t column, std::int64_t row, int parts) {
    const bool byRows = IsByRows(cells);
    const std::int64_t place = byRows ? row - cells.row : column - cells.column;
    const std::int64_t count = byRows ? cells.rows : cells.columns;
    return static_cast<int>(((place + 1) * parts + count - 1) / count);
}

}  // namespace orvo::tiling
