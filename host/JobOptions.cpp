#include "host/JobOptions.h"

#include <cmath>
#include <string>
#include <vector>

#include "host/Options.h"

namespace orvo::host {
namespace {

using tiling::UsageError;

/// The words that make any part, where --part is added.
std::vector<std::string> CommandWithoutPart() {
    std::vector<std::string> words;
    bool isValue = false;
    for (const std::string& word : CommandLine()) {
        const bool isOption = word == "--part";
        if (!isOption && !isValue && !word.starts_with("--part=") && word != "--resume")
            words.push_back(word);
        isValue = isOption;
    }
    return words;
}

tiling::PartNumber ParsePart(const std::string& text) {
    constexpr double kMost = 1e6;
    const auto slash = text.find('/');
    const bool pair = slash != std::string::npos && slash > 0;
    const double part = pair ? ParseNumber(text.substr(0, slash)) : 0;
    const double parts = pair ? ParseNumber(text.substr(slash + 1)) : 0;
    const bool whole = part == std::floor(part) && parts == std::floor(parts);
    if (!whole || part < 1 || part > parts || parts > kMost)
        throw UsageError("is no part; give K/N, for example 3/8 for the third of eight");
    return {static_cast<int>(part), static_cast<int>(parts)};
}

}  // namespace

void AddParts(CLI::App& command, tiling::JobControl& job) {
    command.add_flag("--resume", job.resume,
                     "Go on where a run of the same job ended: tiles that are there are kept");
    AddValue(command, "--part", job.part, ParsePart,
             "Cut the K-th of N parts of the grid, on any machine; then orvo-tile merge OUTDIR")
        ->type_name("K/N");
}

void AddJobOptions(CLI::App& command, tiling::JobControl& job, SessionOptions& session, const char* work) {
    BeginGroup(command, "Run");
    AddValue(command, "--jobs", job.jobs, ParseJobs,
             std::string("Threads that ") + work + " (default: one for each core)")
        ->type_name("N");
    AddRunOptions(command, session, job.overwrite);
}

void CompleteJob(tiling::JobControl& job) {
    if (job.overwrite && job.resume)
        throw UsageError("--overwrite begins anew and --resume goes on; choose one of them");
    if (job.part.parts > 0 && job.overwrite)
        throw UsageError("--part works beside other parts and cannot --overwrite; name an empty folder");
    job.program = ProgramName();
    job.command = CommandWithoutPart();
}

}  // namespace orvo::host
