// The options of every command that does a job: threads, parts, and what becomes of earlier runs.
#pragma once

#include <CLI/CLI.hpp>

#include "host/Session.h"
#include "tiling/JobControl.h"

namespace orvo::host {

/// --resume and --part, in the group that was begun.
void AddParts(CLI::App& command, tiling::JobControl& job);
/// --jobs, --overwrite, --progress and --quiet in a group, then the dialog's.
/// @param work of the threads, for the help
void AddJobOptions(CLI::App& command, tiling::JobControl& job, SessionOptions& session, const char* work);
/// Program and command for the job's files. Fails with UsageError where options contradict each other.
void CompleteJob(tiling::JobControl& job);

}  // namespace orvo::host
