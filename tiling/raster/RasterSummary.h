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
        std::int64_t column = 1;  ///< of the grid, counted from 1 at the upper left corner
        std::int64_t row = 1;
        std::string reason;
    };

    std::vector<std::string> inputs;  ///< as given
    std::string vrt;
    std::int64_t expected = 0;  ///< cells of the grid that the layer and the clip area meet
    std::int64_t written = 0;
    std::int64_t blank = 0;    ///< left out, for they hold no data
    std::int64_t outside = 0;  ///< of the clip area after all, by rounding
    std::vector<CellFailure> failures;
    std::vector<std::string> recoveries;  ///< why tiles that are there were exported instead of converted
    std::vector<std::string>
        leftovers;  ///< names of exported TIFFs that could not be converted, and are kept

    std::int64_t NotReached() const {
        return expected - written - blank - outside - static_cast<std::int64_t>(failures.size());
    }
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
