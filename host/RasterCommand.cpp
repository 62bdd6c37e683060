// orvo-tile raster.
#include <memory>
#include <vector>

#include "host/Commands.h"
#include "host/Options.h"
#include "tiling/Paths.h"
#include "tiling/raster/RasterJob.h"

namespace orvo::host {
namespace {

using tiling::Rectangle;
using tiling::UsageError;

struct RasterOptions {
    tiling::RasterJob job;
    SessionOptions session;
    Long tileSize = 0;  ///< 0 where it was not given, as the two others
    Long tileWidth = 0;
    Long tileHeight = 0;
};

Rectangle ParseClip(const std::vector<std::string>& texts) {
    Rectangle clip;
    double* const edges[] = {&clip.xMin, &clip.yMin, &clip.xMax, &clip.yMax};
    for (std::size_t i = 0; i < 4; ++i) {
        try {
            *edges[i] = ParseNumber(texts.at(i));
        } catch (const UsageError& error) {
            throw UsageError("--clip \"" + texts[i] + "\" " + error.what());
        }
    }
    if (clip.xMin >= clip.xMax || clip.yMin >= clip.yMax) {
        throw UsageError(
            "--clip has no area; give XMIN YMIN XMAX YMAX with XMIN below XMAX and YMIN below YMAX");
    }
    return clip;
}

void TakeTileSize(RasterOptions& options) {
    if (options.tileSize != 0 && (options.tileWidth != 0 || options.tileHeight != 0))
        throw UsageError("--tile-size is for square tiles; leave it out, or --tile-width and --tile-height");
    if (options.tileSize == 0 && (options.tileWidth == 0 || options.tileHeight == 0))
        throw UsageError(
            "the tiles need a size in whole map units: --tile-size N, or --tile-width N --tile-height N");
    options.job.tileWidth = options.tileSize != 0 ? options.tileSize : options.tileWidth;
    options.job.tileHeight = options.tileSize != 0 ? options.tileSize : options.tileHeight;
}

int Run(RasterOptions& options) {
    TakeTileSize(options);
    Session session(options.session);
    return session.Finish(tiling::CutRaster(options.job, session.Callbacks()));
}

void AddFiles(CLI::App& command, tiling::RasterJob& job) {
    command.add_option("INPUT", job.input, "Raster file, or a raster inside a container as GDAL names it")
        ->required();
    command.add_option("OUTDIR", job.outdir, "Folder for the tiles; made where it is missing")->required();
    BeginGroup(command, "Output");
    AddValue(
        command, "--name", job.name,
        [](const std::string& text) {
            if (text.empty()) throw UsageError("is empty; give the image file");
            return text;
        },
        "Image file, where it is not the layer's own")
        ->type_name("FILENAME");
    command.add_flag("--world-files", job.worldFiles, "Write a world file beside each tile");
    command.add_flag("--vrt", job.vrt, "Write mosaic.vrt, one virtual raster over all tiles");
    command.add_flag("--preview", job.preview,
                     "Write index.html, a page that shows the tiles where they lie");
}

void AddTiles(CLI::App& command, RasterOptions& options) {
    tiling::RasterJob& job = options.job;
    BeginGroup(command, "Tiles");
    AddValue(command, "--tile-size", options.tileSize, ParseSize,
             "Width and height of a tile in whole map units; -1 spans the whole axis");
    AddValue(command, "--tile-width", options.tileWidth, ParseSize, "Width alone");
    AddValue(command, "--tile-height", options.tileHeight, ParseSize, "Height alone");
    AddValue(command, "--format", job.format, ParseFormat,
             "Extension of the tiles: png, jpg, gif, bmp, or with --converter what that can write")
        ->type_name("EXT")
        ->default_str(job.format);
    AddValue(command, "--quality", job.quality, ParseQuality, "For formats with losses")
        ->type_name("1-100")
        ->default_str(std::to_string(job.quality));
    AddValue(command, "--converter", job.converter, ParseProgram,
             "Program that converts the tiles: convert, magick, gm, vips, gdal_translate, or any that takes "
             "SOURCE TARGET QUALITY")
        ->type_name("PROGRAM");
    command
        .add_option_function<std::vector<std::string>>(
            "--clip", [&job](const std::vector<std::string>& texts) { job.clip = ParseClip(texts); },
            "Cut only what lies in this area, in map units")
        ->type_name("XMIN YMIN XMAX YMAX")
        ->expected(4);
}

}  // namespace

Command AddRaster(CLI::App& application) {
    CLI::App* const app = application.add_subcommand(
        "raster", "Cut a raster layer into image tiles with an index of their places");
    const auto options = std::make_shared<RasterOptions>();
    AddTiles(*app, *options);
    AddFiles(*app, options->job);
    AddRunOptions(*app, options->session, options->job.overwrite);
    return {app, [options] { return Run(*options); }};
}

}  // namespace orvo::host
