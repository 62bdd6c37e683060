// orvo-tile raster: its options.
#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "host/Commands.h"
#include "host/CommonOptions.h"
#include "host/Values.h"
#include "tiling/Errors.h"
#include "tiling/raster/RasterJob.h"

namespace orvo::host {
namespace {

/// As they stand on the command line.
struct RasterOptions {
    std::string input, outdir, tileSize, tileWidth, tileHeight, converter, name;
    std::string format = "png";
    std::string quality = "75";
    std::vector<std::string> clip;
    bool worldFiles = false, vrt = false, preview = false;
    bool converterGiven = false, nameGiven = false;
    CommonOptions common;
};

void ParseTileSize(const RasterOptions& options, RasterJob& job) {
    const bool both = !options.tileWidth.empty() && !options.tileHeight.empty();
    const bool any = !options.tileWidth.empty() || !options.tileHeight.empty();
    if (!options.tileSize.empty() && any) {
        throw UsageError("--tile-size is for square tiles; leave it out, or --tile-width and --tile-height");
    }
    if (options.tileSize.empty() && !both) {
        throw UsageError(
            "the tiles need a size in whole map units: --tile-size N, or --tile-width N --tile-height N");
    }
    if (both) {
        job.tileWidth = ParseSize("--tile-width", options.tileWidth);
        job.tileHeight = ParseSize("--tile-height", options.tileHeight);
    } else {
        job.tileWidth = job.tileHeight = ParseSize("--tile-size", options.tileSize);
    }
}

std::optional<Rectangle> ParseClip(const std::vector<std::string>& texts) {
    if (texts.empty()) return std::nullopt;
    Rectangle clip;
    double* const edges[] = {&clip.xMin, &clip.yMin, &clip.xMax, &clip.yMax};
    for (std::size_t i = 0; i < 4; ++i) *edges[i] = ParseNumber("--clip", texts.at(i));
    if (clip.xMin >= clip.xMax || clip.yMin >= clip.yMax) {
        throw UsageError(
            "--clip has no area; give XMIN YMIN XMAX YMAX with XMIN below XMAX and YMIN below YMAX");
    }
    return clip;
}

RasterJob Parse(const RasterOptions& options) {
    RasterJob job;
    ParseTileSize(options, job);
    job.format = ParseFormat(options.format);
    job.quality = ParseQuality(options.quality);
    job.clip = ParseClip(options.clip);
    if (options.converterGiven) job.converter = FindProgram("--converter", options.converter);
    RefuseBackslash("INPUT", options.input);
    RefuseBackslash("--name", options.name);
    if (options.nameGiven && options.name.empty()) throw UsageError("--name is empty; give the image file");
    job.input = options.input;
    job.outdir = options.outdir;
    job.name = options.name;
    job.worldFiles = options.worldFiles;
    job.vrt = options.vrt;
    job.preview = options.preview;
    job.overwrite = options.common.overwrite;
    job.quiet = options.common.quiet;
    job.languageOffset = options.common.LanguageOffset();
    job.onError = options.common.OnError();
    job.progress = options.common.Progress();
    return job;
}

void AddFiles(CLI::App& command, RasterOptions& options) {
    command
        .add_option("INPUT", options.input, "Raster file, or a raster inside a container as GDAL names it")
        ->required();
    command.add_option("OUTDIR", options.outdir, "Folder for the tiles; made where it is missing")
        ->required();
    command.add_option("--name", options.name, "Image file, where it is not the layer's own");
    command.add_flag("--world-files", options.worldFiles, "Write a world file beside each tile");
    command.add_flag("--vrt", options.vrt, "Write mosaic.vrt, one virtual raster over all tiles");
    command.add_flag("--preview", options.preview,
                     "Write index.html, a page that shows the tiles where they lie");
}

void AddTiles(CLI::App& command, RasterOptions& options) {
    command.add_option("--tile-size", options.tileSize,
                       "Width and height of a tile in whole map units; -1 spans the whole axis");
    command.add_option("--tile-width", options.tileWidth, "Width alone");
    command.add_option("--tile-height", options.tileHeight, "Height alone");
    command
        .add_option("--format", options.format,
                    "Extension of the tiles: png, jpg, gif, bmp, or with --converter what that can write")
        ->capture_default_str();
    command.add_option("--quality", options.quality, "1 to 100, for formats with losses")
        ->capture_default_str();
    command.add_option(
        "--converter", options.converter,
        "Program that converts the tiles: convert, magick, gm, vips, gdal_translate, or any that takes "
        "SOURCE TARGET QUALITY");
    command
        .add_option("--clip", options.clip,
                    "Cut only what lies in this area, in map units: XMIN YMIN XMAX YMAX")
        ->expected(4);
}

}  // namespace

Command AddRaster(CLI::App& application) {
    CLI::App* const app = application.add_subcommand(
        "raster", "Cut a raster layer into image tiles with an index of their places");
    const auto options = std::make_shared<RasterOptions>();
    AddFiles(*app, *options);
    AddTiles(*app, *options);
    AddCommonOptions(*app, options->common);
    return {app, [app, options] {
                options->converterGiven = app->count("--converter") > 0;
                options->nameGiven = app->count("--name") > 0;
                return RunRaster(Parse(*options));
            }};
}

}  // namespace orvo::host
