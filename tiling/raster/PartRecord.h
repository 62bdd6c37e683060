// What a part of a job says of its tiles, for the run that merges all parts.
#pragma once

#include <string>
#include <vector>

#include "tiling/output/JsonText.h"
#include "tiling/output/WorkFolder.h"
#include "tiling/raster/RasterSummary.h"
#include "tiling/raster/TileAccount.h"

namespace orvo::tiling {

/// @param command that makes the part, words of a shell
Json PartRecord(const PartNumber& part, const std::vector<std::string>& command, const TileAccount& account,
                const RasterSummary& summary, const std::string& stretch);

/// All parts of a job, by the records in its folder.
class PartRecords {
  public:
    /// Fails with RunError where there are none, or where some are missing; its text names these.
    explicit PartRecords(const std::string& folder);

    const std::vector<std::string>& Names() const { return names_; }
    /// How cells were brought to 8 bits; empty where they were not.
    std::string Stretch() const;
    /// Adds the tiles of all parts to the account of the whole, and what else was found to the summary. Fails
    /// with RunError where a part has not made all of its tiles; its text names the part and what makes it.
    void AddTo(TileAccount& account, RasterSummary& summary, const std::string& folder) const;

  private:
    std::string Remedy(int part) const;

    std::vector<std::string> names_;
    std::vector<Json> records_;  ///< by part
};

}  // namespace orvo::tiling
