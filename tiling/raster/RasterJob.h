// Cutting a raster layer into image tiles.
#pragma once

#include <optional>
#include <string>

#include "platform/Types.h"
#include "tiling/Callbacks.h"
#include "tiling/output/PlacedTile.h"
#include "tiling/raster/RasterSummary.h"

namespace orvo::tiling {

struct RasterJob {
    std::string input;    ///< raster file, or a raster inside a container by the name that GDAL gives it
    std::string outdir;   ///< made where it is missing
    Long tileWidth = -1;  ///< map units from 1 on, −1 for the whole axis
    Long tileHeight = -1;
    std::string format = "png";     ///< a bare extension in lower case
    Integer quality = 75;           ///< 1 to 100, for formats with losses
    std::string converter;          ///< program that converts the tiles; empty for none
    std::optional<Rectangle> clip;  ///< only what lies in it is cut
    std::string name;               ///< the image file where it is not the layer's own; empty otherwise
    bool worldFiles = false;        ///< writes a world file beside each tile
    bool vrt = false;               ///< writes one virtual raster over all tiles
    bool preview = false;           ///< writes a page that shows the tiles where they lie
    bool overwrite = false;         ///< removes the files of earlier runs from `outdir` first
};

/// Cuts the layer, writes the index and what else the job asks for, and accounts for each tile. Failures are
/// shown by the installed platform's desktop, whose answers decide how the run goes on. Not for use from
/// several threads: the component has one dialog and no locks.
///
/// Fails with UsageError where the job cannot be done as it stands, with RunError or RuntimeError where the
/// source cannot be read; nothing is written then.
RasterSummary CutRaster(const RasterJob& job, const Callbacks& callbacks = {});

}  // namespace orvo::tiling
