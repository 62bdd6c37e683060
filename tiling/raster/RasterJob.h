// Cutting a raster layer into image tiles.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/raster/ImageFormat.h"
#include "tiling/Callbacks.h"
#include "tiling/JobControl.h"
#include "tiling/output/PlacedTile.h"
#include "tiling/output/TileNames.h"
#include "tiling/raster/RasterSummary.h"

namespace orvo::tiling {

/// What becomes of cells that a format cannot hold.
enum class Values {
    Stretch,  ///< one linear stretch of the whole layer to 8 bits
    Refuse    ///< the job
};

struct RasterJob : JobControl {
    /// Raster files, or rasters inside containers by the names that GDAL gives them; several make one mosaic.
    std::vector<std::string> inputs;
    std::string outdir;     ///< made where it is missing
    double tileWidth = -1;  ///< map units above 0, −1 for the whole axis
    double tileHeight = -1;
    Long tilePixelWidth = 0;  ///< pixels, in place of map units; 0 where these count
    Long tilePixelHeight = 0;
    std::optional<Point> origin;  ///< the grid's upper left corner, map units; else the layer's
    std::string tileNames = kUsualTileNames;
    std::string format = "png";                      ///< an extension, or the name of a GDAL driver
    std::vector<std::string> options;                ///< NAME=VALUE, for the driver
    Integer quality = 75;                            ///< 1 to 100, for formats with losses
    raster::Effort effort = raster::Effort::Normal;  ///< how long PNG tiles are packed; no value changes
    std::string converter;                           ///< program that converts the tiles; empty for none
    std::vector<int> bands;                          ///< from 1 on, in this order; empty for all
    Values values = Values::Stretch;
    std::optional<std::pair<double, double>> range;  ///< of the stretch; else the layer's own
    std::optional<Rectangle> clip;                   ///< only what lies in it is cut, map units
    std::string name;         ///< the image file for the converter, where it is not the layer's own
    bool skipBlank = false;   ///< leaves out tiles without data
    bool worldFiles = false;  ///< says where tiles lie beside them, too
    bool vrt = false;         ///< writes one virtual raster over all tiles
    bool preview = false;     ///< writes a page that shows the tiles where they lie
};

/// Cuts the layer, writes the index and what else the job asks for, and accounts for each tile. Failures are
/// shown by the installed platform's desktop, whose answers decide how the run goes on. Not for use from
/// several threads: the component has one dialog and no locks. Its own threads read, encode and convert ahead
/// of the component; up to 16 MB of pixels wait so, or one tile where a tile is larger.
///
/// Fails with UsageError where the job cannot be done as it stands, with RunError or RuntimeError where the
/// source cannot be read; nothing is written then.
RasterSummary CutRaster(const RasterJob& job, const Callbacks& callbacks = {});

/// Makes index, mosaic, page and summary of a folder whose parts are all there, the same files as of one run,
/// and removes the parts' records. Fails like CutRaster, and with RunError where a part is missing; its text
/// names each missing part and what makes it.
RasterSummary MergeRaster(const std::string& outdir, const Callbacks& callbacks = {});

/// What the run would cut, as one JSON object; docs/command-line.md names the members. Writes nothing. Fails
/// like CutRaster.
std::string PlanOfRaster(const RasterJob& job);

}  // namespace orvo::tiling
