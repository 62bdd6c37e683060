// What a vector run came to.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tiling/Summary.h"
#include "tiling/vector/GridPlan.h"

namespace orvo::tiling {

class VectorSummary final : public Summary {
  public:
    struct TileFailure {
        std::string tile;
        std::string reason;
    };

    std::string layer;
    std::string skippedFile;  ///< full path; empty for none
    GridPlan grid;
    std::int64_t featuresIn = 0;
    std::int64_t placed = 0;
    std::map<std::string, std::int64_t> skipped;  ///< features by reason
    std::int64_t lost = 0;                        ///< of those, features that hold something to place
    std::int64_t pieces = 0;                      ///< in the tiles written
    std::int64_t coveredLeftOut = 0;
    std::int64_t written = 0;
    std::int64_t occupied = 0;  ///< tiles that some piece lies in
    std::vector<TileFailure> failures;
    bool isPart = false;  ///< of the grid: what lies elsewhere is not known here

    std::int64_t Skipped() const;
    std::string AsJson() const override;

  private:
    bool HasAllTiles() const override { return failures.empty() && lost == 0 && written == occupied; }
    std::vector<std::string> FailureLines() const override;
    std::vector<std::string> SkippedLines(bool quiet) const override;
    std::string ResultLine() const override;
};

}  // namespace orvo::tiling
