// What a raster run came to.
#pragma once

#include <string>
#include <vector>

#include "platform/Types.h"
#include "tiling/Summary.h"

namespace orvo::tiling {

class RasterSummary final : public Summary {
  public:
    struct CellFailure {
        Long column = 0;  ///< of the grid, counted from 0
        Long row = 0;     ///< counted from the top
        std::string reason;
    };

    std::string vrt;
    Long expected = 0;  ///< cells of the grid
    Long written = 0;
    Long outside = 0;  ///< of the clip area
    std::vector<CellFailure> failures;
    std::vector<std::string> recoveries;  ///< why tiles that are there were exported instead of converted
    std::vector<std::string>
        leftovers;  ///< names of exported TIFFs that could not be converted, and are kept

    Long NotReached() const { return expected - written - outside - static_cast<Long>(failures.size()); }
    /// Whether the run has left no file.
    bool LeavesNothing() const { return written == 0 && leftovers.empty() && index.empty(); }
    std::string AsJson() const override;

  private:
    bool HasAllTiles() const override { return failures.empty() && NotReached() == 0; }
    std::vector<std::string> FailureLines() const override;
    std::vector<std::string> SkippedLines(bool) const override { return {}; }
    std::vector<std::string> AllNotices() const override;
    std::string ResultLine() const override;
};

}  // namespace orvo::tiling
