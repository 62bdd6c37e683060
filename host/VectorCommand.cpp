// orvo-tile vector and orvo-tile locate.
#include <memory>

#include "host/Commands.h"
#include "host/JobOptions.h"
#include "host/Options.h"
#include "tiling/output/JsonText.h"
#include "tiling/vector/VectorJob.h"

namespace orvo::host {
namespace {

using tiling::UsageError;

struct VectorOptions {
    tiling::VectorJob job;
    SessionOptions session;
    double x = 0;
    double y = 0;
};

void CheckTiles(const tiling::TileSizes& tiles) {
    const bool sizes = tiles.width != 0 || tiles.height != 0;
    const bool counts = tiles.columns != 0 || tiles.rows != 0;
    if (sizes && counts) {
        throw UsageError(
            "the tiles take a size or a number, not both; leave out --tile-width and --tile-height, or "
            "--columns and --rows");
    }
    if ((tiles.width != 0 && tiles.height != 0) || (tiles.columns != 0 && tiles.rows != 0)) return;
    throw UsageError(
        "the tiles need --tile-width N and --tile-height N in whole map units, or --columns C and --rows R");
}

int RunVector(VectorOptions& options) {
    CheckTiles(options.job.sizes);
    CompleteJob(options.job);
    Session session(options.session);
    return session.Finish(tiling::CutVector(options.job, session.Callbacks()));
}

int RunLocate(const VectorOptions& options) {
    CheckTiles(options.job.sizes);
    Session session(options.session);
    const auto tile = tiling::LocatePoint(options.job, options.x, options.y, session.Callbacks());
    const tiling::Json answer{{"column", tile.column},
                              {"row", tile.row},
                              {"id", tile.id},
                              {"tile", tile.name},
                              {"on_edge", tile.onEdge}};
    Print(tiling::TextOf(answer) + "\n", "the answer");
    return tile.shown == 0 ? kExitDone : kExitIncomplete;
}

void AddInput(CLI::App& command, tiling::VectorGridJob& job) {
    command.add_option("INPUT", job.input, "Vector file, or any source that GDAL opens")->required();
}

void AddTiles(CLI::App& command, tiling::VectorGridJob& job) {
    BeginGroup(command, "Tiles");
    AddValue(command, "--tile-width", job.sizes.width, ParseSize,
             "Width of a tile in whole map units; -1 spans the axis");
    AddValue(command, "--tile-height", job.sizes.height, ParseSize, "Height of a tile");
    AddValue(command, "--columns", job.sizes.columns, ParseCount, "Number of columns, instead of a width");
    AddValue(command, "--rows", job.sizes.rows, ParseCount, "Number of rows, instead of a height");
    command.add_option("--layer", job.layer, "Layer, where the source holds several")->type_name("NAME");
    AddValue(command, "--id", job.prefix, ParsePrefix, "Text before the tiles' identifiers grp0, grp1, ...")
        ->type_name("PREFIX");
}

}  // namespace

Command AddVector(CLI::App& application) {
    CLI::App* const app = application.add_subcommand(
        "vector", "Cut a vector layer into one file per tile with an index of their places");
    const auto options = std::make_shared<VectorOptions>();
    tiling::VectorJob& job = options->job;
    AddInput(*app, job);
    app->add_option("OUTDIR", job.outdir, "Folder for the tiles; made where it is missing")->required();
    AddTiles(*app, job);
    BeginGroup(*app, "Output");
    app->add_option(
           "--format", job.format,
           "Format of the tiles: GeoJSON, GPKG, \"ESRI Shapefile\", FlatGeobuf or any other that GDAL "
           "creates; an extension does too")
        ->type_name("NAME")
        ->capture_default_str();
    app->add_flag("--strict", job.strict, "Write nothing of an area for the tiles that it covers whole");
    app->add_flag("--preview", job.preview, "Write index.html, a page that shows the features and tiles");
    AddParts(*app, job);
    AddJobOptions(*app, job, options->session, "read, relate and cut");
    return {app, [options] { return RunVector(*options); }};
}

Command AddLocate(CLI::App& application) {
    CLI::App* const app =
        application.add_subcommand("locate", "Print the tile of a vector layer's grid that holds a point");
    const auto options = std::make_shared<VectorOptions>();
    AddInput(*app, options->job);
    AddValue(*app, "X", options->x, ParseNumber, "Place in the layer's coordinate system")->required();
    AddValue(*app, "Y", options->y, ParseNumber, "Its other coordinate")->required();
    AddTiles(*app, options->job);
    AddRunOptions(*app, options->session, options->job.overwrite);
    return {app, [options] { return RunLocate(*options); }};
}

}  // namespace orvo::host
