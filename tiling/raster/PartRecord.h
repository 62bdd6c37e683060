// What a part of a raster job says of its tiles.
#pragma once

#include <string>
#include <vector>

#include "tiling/output/PartRecords.h"
#include "tiling/raster/RasterSummary.h"
#include "tiling/raster/TileAccount.h"

namespace orvo::tiling {

/// @param command that makes the part, words of a shell
Json PartRecord(const PartNumber& part, const std::vector<std::string>& command, const TileAccount& account,
                const RasterSummary& summary, const std::string& stretch);

/// Adds the tiles of all parts to the account of the whole, and what else was found to the summary. Fails
/// with RunError where a part has not made all of its tiles; its text names the part and what makes it.
/// @return how cells were brought to 8 bits; empty where they were not
std::string AddParts(const PartRecords& parts, TileAccount& account, RasterSummary& summary);

}  // namespace orvo::tiling
