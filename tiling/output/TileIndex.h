// The index of a run: tiles.geojson.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tiling/output/PlacedTile.h"

namespace orvo::tiling {

constexpr const char* kGenerator = "orvo-tile";

/// The index as a text: one rectangle per tile, counter-clockwise, with `location`, `column` and `row`, and
/// where tiles have names `tile`, `x` and `y`.
/// @param crs the name of the coordinate system, see ReferenceSystem.h
/// @param companions the run's other files, which go when the index goes
std::string IndexText(const TileList& tiles, const std::string& crs,
                      const std::vector<std::string>& companions);

/// The bytes that an index of so many tiles needs at most.
/// @param nameBytes of a tile's name, with those of all files that go with it
std::uintmax_t IndexRoom(std::int64_t tiles, const std::string& crs, std::size_t nameBytes);

}  // namespace orvo::tiling
