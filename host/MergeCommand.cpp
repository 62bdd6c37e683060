// orvo-tile merge.
#include <memory>
#include <string>

#include "host/Commands.h"
#include "host/Options.h"
#include "tiling/output/OutputFolder.h"
#include "tiling/raster/RasterJob.h"
#include "tiling/vector/VectorJob.h"

namespace orvo::host {
namespace {

struct MergeOptions {
    std::string outdir;
    SessionOptions session;
};

int Run(MergeOptions& options) {
    Session session(options.session);
    const tiling::Json job = tiling::JobIn(tiling::OutputFolder(options.outdir).Path());
    if (job.at("command") == "vector")
        return session.Finish(tiling::MergeVector(options.outdir, session.Callbacks()));
    return session.Finish(tiling::MergeRaster(options.outdir, session.Callbacks()));
}

}  // namespace

Command AddMerge(CLI::App& application) {
    CLI::App* const app = application.add_subcommand(
        "merge", "Make index, mosaic and page of a folder that all parts of a job were cut into");
    const auto options = std::make_shared<MergeOptions>();
    app->add_option("OUTDIR", options->outdir, "Folder that all parts were cut into")->required();
    BeginGroup(*app, "Run");
    AddNarration(*app, options->session);
    AddDialogOptions(*app, options->session);
    return {app, [options] { return Run(*options); }};
}

}  // namespace orvo::host
