// The index of a run: tiles.geojson.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tiling/output/PlacedTile.h"

namespace orvo::tiling {

/// The index as a text: one rectangle per tile, counter-clockwise, with `location`, `column` and `row`.
/// @param crs the name of the coordinate system, see ReferenceSystem.h
/// @param companions the run's other files, which go when the index goes
std::string IndexText(const std::vector<PlacedTile>& tiles, const std::string& crs,
                      const std::vector<std::string>& companions);

/// The bytes that an index of so many tiles needs at most.
/// @param nameBytes of a tile's name, with those of all files that go with it
std::uintmax_t IndexRoom(std::int64_t tiles, const std::string& crs, std::size_t nameBytes);

/// File names of the indexes in a folder, tiles.geojson or tiles_2.geojson and so on; none for a missing
/// folder.
std::vector<std::string> FindIndexes(const std::string& folder);

/// The tiles and companions that an index names. Fails with UsageError where the index is not one of ours or
/// names anything that a run does not write into its own folder.
std::vector<std::string> FilesOfIndex(const std::string& folder, const std::string& index);

}  // namespace orvo::tiling
