// orvo-tile vector and orvo-tile locate: their options.
#include <CLI/CLI.hpp>
#include <memory>

#include "host/Commands.h"
#include "host/CommonOptions.h"
#include "host/Values.h"
#include "tiling/Errors.h"
#include "tiling/vector/VectorJob.h"

namespace orvo::host {
namespace {

/// As they stand on the command line.
struct VectorOptions {
    std::string input, outdir, layer, prefix, x, y;
    std::string tileWidth, tileHeight, columns, rows;
    std::string format = "GeoJSON";
    bool strict = false, preview = false;
    CommonOptions common;
};

TileSizes ParseTiles(const VectorOptions& options) {
    const bool sizes = !options.tileWidth.empty() || !options.tileHeight.empty();
    const bool counts = !options.columns.empty() || !options.rows.empty();
    if (sizes && counts) {
        throw UsageError(
            "the tiles take a size or a number, not both; leave out --tile-width and "
            "--tile-height, or --columns and --rows");
    }
    if (sizes && !options.tileWidth.empty() && !options.tileHeight.empty()) {
        return {ParseSize("--tile-width", options.tileWidth), ParseSize("--tile-height", options.tileHeight),
                0, 0};
    }
    if (counts && !options.columns.empty() && !options.rows.empty())
        return {0, 0, ParseCount("--columns", options.columns), ParseCount("--rows", options.rows)};
    throw UsageError(
        "the tiles need --tile-width N and --tile-height N in whole map units, or --columns C and "
        "--rows R");
}

/// The text stands at the beginning of file names.
std::string ParsePrefix(const std::string& text) {
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7f; };
    const bool odd = text.starts_with('.') || text.find_first_of("/\\") != std::string::npos ||
                     std::any_of(text.begin(), text.end(), isControl);
    if (odd || text.size() > 200) {
        throw UsageError(
            "--id \"" + text +
            "\" cannot begin the name of a file: give up to 200 bytes without slashes and control "
            "characters, not beginning with a dot");
    }
    return text;
}

VectorJob Parse(const VectorOptions& options) {
    VectorJob job;
    job.sizes = ParseTiles(options);
    job.prefix = ParsePrefix(options.prefix);
    RefuseBackslash("INPUT", options.input);
    job.input = options.input;
    job.outdir = options.outdir;
    job.layer = options.layer;
    job.format = options.format;
    job.strict = options.strict;
    job.preview = options.preview;
    job.overwrite = options.common.overwrite;
    job.quiet = options.common.quiet;
    job.languageOffset = options.common.LanguageOffset();
    job.onError = options.common.OnError();
    job.progress = options.common.Progress();
    return job;
}

void AddInput(CLI::App& command, VectorOptions& options) {
    command.add_option("INPUT", options.input, "Vector file, or any source that GDAL opens")->required();
}

void AddTiles(CLI::App& command, VectorOptions& options) {
    command.add_option("--tile-width", options.tileWidth,
                       "Width of a tile in whole map units; -1 spans the axis");
    command.add_option("--tile-height", options.tileHeight, "Height of a tile");
    command.add_option("--columns", options.columns, "Number of columns, instead of a width");
    command.add_option("--rows", options.rows, "Number of rows, instead of a height");
    command.add_option("--layer", options.layer, "Layer, where the source holds several");
    command.add_option("--id", options.prefix, "Text before the tiles' identifiers grp0, grp1, ...");
}

}  // namespace

Command AddVector(CLI::App& application) {
    CLI::App* const app = application.add_subcommand(
        "vector", "Cut a vector layer into one file per tile with an index of their places");
    const auto options = std::make_shared<VectorOptions>();
    AddInput(*app, *options);
    app->add_option("OUTDIR", options->outdir, "Folder for the tiles; made where it is missing")->required();
    AddTiles(*app, *options);
    app->add_option(
           "--format", options->format,
           "Format of the tiles: GeoJSON, GPKG, \"ESRI Shapefile\", FlatGeobuf or any other that GDAL "
           "creates; an extension does too")
        ->capture_default_str();
    app->add_flag("--strict", options->strict, "Write nothing of an area for the tiles that it covers whole");
    app->add_flag("--preview", options->preview,
                  "Write index.html, a page that shows the features and tiles");
    AddCommonOptions(*app, options->common);
    return {app, [options] { return RunVector(Parse(*options)); }};
}

Command AddLocate(CLI::App& application) {
    CLI::App* const app =
        application.add_subcommand("locate", "Print the tile of a vector layer's grid that holds a point");
    const auto options = std::make_shared<VectorOptions>();
    AddInput(*app, *options);
    app->add_option("X", options->x, "Place in the layer's coordinate system")->required();
    app->add_option("Y", options->y)->required();
    AddTiles(*app, *options);
    AddCommonOptions(*app, options->common);
    return {app, [options] {
                const double x = ParseNumber("X", options->x);
                const double y = ParseNumber("Y", options->y);
                return RunLocate(Parse(*options), x, y);
            }};
}

}  // namespace orvo::host
