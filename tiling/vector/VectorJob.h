// Cutting a vector layer into one file per tile, and finding the tile of a point.
#pragma once

#include <string>

#include "platform/Types.h"
#include "tiling/Callbacks.h"
#include "tiling/JobControl.h"
#include "tiling/vector/VectorSummary.h"

namespace orvo::tiling {

/// Either sizes or counts, for both axes; 0 for what was not given.
struct TileSizes {
    Long width = 0;  ///< map units, −1 for the whole axis
    Long height = 0;
    Long columns = 0;
    Long rows = 0;
};

/// The tiles that are laid over a layer.
struct VectorGridJob {
    std::string input;  ///< vector file, or any source that GDAL opens
    std::string layer;  ///< empty for the only one
    TileSizes sizes;
    std::string prefix;  ///< before the tiles' identifiers
};

struct VectorJob : VectorGridJob, JobControl {
    std::string outdir;              ///< made where it is missing
    std::string format = "GeoJSON";  ///< name or extension
    bool strict = false;             ///< tiles that an area covers whole get nothing from it
    bool preview = false;            ///< writes a page that shows the features and tiles
};

/// Cuts the layer, writes the index and what else the job asks for, and accounts for each feature. Failures
/// are shown by the installed platform's desktop. Not for use from several threads: the component has one
/// dialog and no locks.
///
/// Fails with UsageError where the job cannot be done as it stands, with RunError or RuntimeError where the
/// source cannot be read; nothing is written then.
VectorSummary CutVector(const VectorJob& job, const Callbacks& callbacks = {});

/// Puts the parts of a job together: index, skipped features, page and summary as of one run. Reads the layer
/// once more, and cuts nothing. Fails with RunError, and changes nothing, where parts or tiles are missing;
/// its text names the commands that make them.
VectorSummary MergeVector(const std::string& outdir, const Callbacks& callbacks = {});

/// Where a point lies in a layer's grid.
struct LocatedTile {
    Long column = 0;  ///< from the west, counted from 1
    Long row = 0;     ///< from the south, counted from 1
    std::string id;
    std::string name;     ///< prefix and identifier
    bool onEdge = false;  ///< the point stands on an edge of the tile
    int shown = 0;        ///< failures that were shown on the way
};

/// @param x, y in the layer's coordinate system
/// Fails as CutVector does, and with RunError where no tile holds the point.
LocatedTile LocatePoint(const VectorGridJob& job, double x, double y, const Callbacks& callbacks = {});

}  // namespace orvo::tiling
