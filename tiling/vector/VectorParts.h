// What a part of a vector job leaves, and what the merge makes of all.
#pragma once

#include <string>
#include <vector>

#include "tiling/output/PartRecords.h"
#include "tiling/vector/Placements.h"
#include "tiling/vector/TileFiles.h"
#include "tiling/vector/VectorGrid.h"
#include "tiling/vector/VectorSummary.h"

namespace orvo::tiling {

/// @param head see PartHead @param missing numbers of the tiles that pieces lie in, and that are not there
Json VectorPartRecord(const Json& head, const TileFiles& tiles, const std::vector<std::int64_t>& missing,
                      const Placements& placements, const VectorSummary& summary, const Json& findings);

/// The parts of a job together: what became of each geometry, and the tiles.
class VectorParts {
  public:
    /// Fails with RunError where records make no sense, or tell of tiles that are missing, or gone; its text
    /// names the parts and what makes them.
    VectorParts(const PartRecords& parts, VectorGrid& grid, PieceWriter& writer, TileFiles& tiles,
                VectorSummary& summary);

    /// Of the layer's next geometry, in all parts.
    Placement Next();

  private:
    std::vector<Placements> placements_;
};

}  // namespace orvo::tiling
