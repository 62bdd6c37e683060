// What the vector commands are asked to do.
#pragma once

#include <string>

#include "host/CommonOptions.h"

namespace orvo::host {

/// Either sizes or counts, for both axes; 0 for what was not given.
struct TileSizes {
    Long width = 0;  ///< map units, −1 for the whole axis
    Long height = 0;
    Long columns = 0;
    Long rows = 0;
};

struct VectorJob {
    std::string input;
    std::string layer;  ///< empty for the only one
    std::string outdir;
    TileSizes sizes;
    std::string prefix;  ///< before the tiles' identifiers
    std::string format;  ///< name or extension
    bool strict = false;
    bool preview = false;
    bool overwrite = false;
    bool quiet = false;
    Integer languageOffset = 0;
    FailureHandling onError;
    ProgressMode progress = ProgressMode::None;
};

/// Cuts the layer and prints the summary. Gives the exit code; errors as in Command::run.
int RunVector(const VectorJob& job);

/// Prints the tile of a point as one line of JSON. Gives the exit code; errors as in Command::run.
int RunLocate(const VectorJob& job, double x, double y);

}  // namespace orvo::host
