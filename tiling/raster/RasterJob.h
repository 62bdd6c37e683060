// What the raster command is asked to do.
#pragma once

#include <optional>
#include <string>

#include "host/CommonOptions.h"
#include "tiling/output/PlacedTile.h"

namespace orvo::host {

struct RasterJob {
    std::string input;
    std::string outdir;
    Long tileWidth = -1;  ///< map units, −1 for the whole axis
    Long tileHeight = -1;
    std::string format;  ///< a bare extension in lower case
    Integer quality = 75;
    std::string converter;  ///< empty for none
    std::optional<Rectangle> clip;
    std::string name;  ///< the image file where it is not the layer's own; empty otherwise
    bool worldFiles = false;
    bool vrt = false;
    bool preview = false;
    bool overwrite = false;
    bool quiet = false;
    Integer languageOffset = 0;
    FailureHandling onError;
    ProgressMode progress = ProgressMode::None;
};

/// Cuts the tiles and prints the summary. Gives the exit code; errors as in Command::run.
int RunRaster(const RasterJob& job);

}  // namespace orvo::host
