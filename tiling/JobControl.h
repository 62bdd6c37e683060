// How a job is done: after earlier runs, on how many threads, and beside which other parts.
#pragma once

#include <string>
#include <vector>

#include "tiling/Parts.h"

namespace orvo::tiling {

struct JobControl {
    bool overwrite = false;  ///< removes the files of earlier runs from the output folder first
    bool resume = false;     ///< goes on where a run of the same job ended: tiles that are there are kept
    /// Threads that work ahead of the component; 0 for one a core. The files are the same for every number.
    int jobs = 0;
    /// The part of the grid that is cut; by default all of it. A part makes its tiles and a record of them; a
    /// merge makes the rest of all parts' records.
    PartNumber part;
    std::string program;               ///< name and version of the program, kept in job.json
    std::vector<std::string> command;  ///< that makes the part, for people: kept in its record
};

}  // namespace orvo::tiling
