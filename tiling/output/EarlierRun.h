// What a run, finished or killed, has left in an output folder.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tiling/output/JsonText.h"
#include "tiling/output/WorkFolder.h"

namespace orvo::tiling {

constexpr const char* kJobFile = "job.json";

/// Of one run, or of several where an older program let them share a folder.
struct EarlierRun {
    Json job;                                               ///< as job.json has it; null where there is none
    std::vector<std::string> indexes;                       ///< tiles.geojson, tiles_2.geojson and so on
    std::map<std::string, std::vector<std::string>> tiles;  ///< names, each with the files that go with it
    std::vector<std::string> products;                      ///< mosaic, page and so on
    std::vector<std::string> records;                       ///< of parts

    bool IsThere() const { return !job.is_null() || !indexes.empty(); }
};

/// Looks at indexes, job, records and journals. Nothing is there for a missing folder.
/// @param part looks for tiles in its own record and journal only, for others may be at work
/// Fails with UsageError where they are none of ours, or name what a run does not write.
EarlierRun ReadEarlierRun(const std::string& folder, const PartNumber& part = {});

/// A file of ours, which says so. Fails with UsageError.
Json ReadOurs(const std::string& path);
/// The job of the parts in a folder. Fails with UsageError where there is none.
Json JobIn(const std::string& folder);

/// Says what differs between two jobs; empty for nothing.
std::string Difference(const Json& earlier, const Json& now);

}  // namespace orvo::tiling
