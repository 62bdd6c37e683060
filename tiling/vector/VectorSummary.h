// What a vector run came to.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "tiling/vector/VectorGrid.h"

namespace orvo::host {

struct VectorSummary {
    struct TileFailure {
        std::string tile;
        std::string reason;
    };

    std::string input, layer, outdir;
    std::string index, skippedFile, preview;  ///< full paths; empty for none
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
    std::vector<std::string> notices, errors;
    int shown = 0;  ///< failures and messages that were shown during the run
    bool interrupted = false;

    std::int64_t Skipped() const;
    int ExitCode() const;
    /// Errors always; the rest unless `quiet`.
    void Narrate(std::ostream& out, bool quiet) const;
    /// As JSON.
    std::string Text() const;
};

}  // namespace orvo::host
