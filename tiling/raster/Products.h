// The files that a run adds to its tiles.
#pragma once

#include <string>
#include <vector>

#include "platform/gdal/RasterLayer.h"
#include "tiling/output/PlacedTile.h"
#include "tiling/output/Publish.h"
#include "tiling/output/ReferenceSystem.h"
#include "tiling/raster/RasterJob.h"

namespace orvo::tiling {

/// Full paths; empty for what was not asked for or failed.
struct Products {
    std::string index;
    std::string vrt;
    std::string preview;
    std::vector<std::string> notices;
    std::vector<std::string> errors;
};

/// What products say of the layer: known from the start, for the source may be gone at the end.
struct LayerFacts {
    explicit LayerFacts(gdal::RasterLayer& layer);

    ReferenceSystem system;
    std::string wkt;  ///< of the coordinate system; empty where it is not known
    Point cell;       ///< its size in map units
};

/// Writes mosaic, page and index. They get their usual names, or the same number in all three where one of
/// them is taken.
/// @param tiles at least one, or a companion
/// @param companions names of other files in the folder that go when the index goes
Products WriteProducts(const RasterJob& job, const LayerFacts& layer, const std::string& folder,
                       const TileList& tiles, std::vector<std::string> companions, DraftSet& drafts);

}  // namespace orvo::tiling
