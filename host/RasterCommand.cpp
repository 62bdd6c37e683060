// orvo-tile raster.
#include <memory>
#include <sstream>
#include <tuple>
#include <vector>

#include "host/Commands.h"
#include "host/JobOptions.h"
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
    std::vector<std::string> paths;  ///< INPUT..., OUTDIR
    double tileSize = 0;             ///< 0 where it was not given, as the two others
    double tileWidth = 0;
    double tileHeight = 0;
    bool dryRun = false;
};

Rectangle ParseClip(const std::vector<std::string>& texts) {
    const std::vector<double> edges = ParseNumbers("--clip", texts);
    const Rectangle clip{edges[0], edges[1], edges[2], edges[3]};
    if (clip.xMin >= clip.xMax || clip.yMin >= clip.yMax) {
        throw UsageError(
            "--clip has no area; give XMIN YMIN XMAX YMAX with XMIN below XMAX and YMIN below YMAX");
    }
    return clip;
}

tiling::Values ParseValues(const std::string& text, tiling::RasterJob& job) {
    std::istringstream words(text);
    std::string how, low, high, more;
    words >> how >> low >> high >> more;
    job.range.reset();
    if (how == "refuse" && low.empty()) return tiling::Values::Refuse;
    const bool ranged = !low.empty();
    if (how != "stretch" || !more.empty() || (ranged && high.empty()))
        throw UsageError("is not known; choose stretch, stretch MIN MAX or refuse");
    if (ranged) {
        job.range = {ParseNumber(low), ParseNumber(high)};
        if (!(job.range->first < job.range->second)) throw UsageError("has no range: give MIN below MAX");
    }
    return tiling::Values::Stretch;
}

void TakePaths(RasterOptions& options) {
    if (options.paths.size() < 2)
        throw UsageError(options.paths.empty()
                             ? "INPUT and OUTDIR are missing; name a raster file and a folder"
                             : "OUTDIR is missing; name a folder for the tiles");
    options.job.outdir = options.paths.back();
    options.job.inputs.assign(options.paths.begin(), options.paths.end() - 1);
}

void TakeTileSize(RasterOptions& options) {
    tiling::RasterJob& job = options.job;
    const bool square = options.tileSize != 0, sides = options.tileWidth != 0 || options.tileHeight != 0;
    const bool pixels = job.tilePixelWidth != 0;
    if (int{square} + int{sides} + int{pixels} > 1)
        throw UsageError(
            "the tiles have one size: give --tile-pixels, --tile-size, or --tile-width and --tile-height");
    if (!pixels && !square && (options.tileWidth == 0 || options.tileHeight == 0))
        throw UsageError(
            "the tiles need a size: --tile-pixels N in pixels, or in map units --tile-size N, or "
            "--tile-width N "
            "and --tile-height N");
    job.tileWidth = pixels ? -1 : square ? options.tileSize : options.tileWidth;
    job.tileHeight = pixels ? -1 : square ? options.tileSize : options.tileHeight;
}

int Run(RasterOptions& options) {
    TakePaths(options);
    TakeTileSize(options);
    CompleteJob(options.job);
    Session session(options.session);
    if (options.dryRun) {
        Print(tiling::PlanOfRaster(options.job), "the plan");
        return kExitDone;
    }
    return session.Finish(tiling::CutRaster(options.job, session.Callbacks()));
}

void AddPlaces(CLI::App& command, RasterOptions& options) {
    command
        .add_option(
            "INPUT", options.paths,
            "Raster files, or rasters inside containers as GDAL names them, several as one mosaic; then "
            "OUTDIR, the folder for the tiles, made where it is missing")
        ->type_name("... OUTDIR")
        ->expected(1, CLI::detail::expected_max_vector_size)
        ->allow_extra_args();
}

void AddGrid(CLI::App& command, RasterOptions& options) {
    BeginGroup(command, "Tiles");
    tiling::RasterJob& job = options.job;
    const auto add = [&](const char* name, auto& value, auto parse, const char* type, const char* text) {
        AddValue(command, name, value, parse, text)->type_name(type);
    };
    command
        .add_option_function<std::string>(
            "--tile-pixels",
            [&job](const std::string& text) {
                std::tie(job.tilePixelWidth, job.tilePixelHeight) = ParsePixels("--tile-pixels", text);
            },
            "Width and height of a tile in pixels")
        ->type_name("N[xM]");
    add("--tile-size", options.tileSize, ParseUnits, "UNITS",
        "Width and height of a tile in map units; -1 spans the whole axis");
    add("--tile-width", options.tileWidth, ParseUnits, "UNITS", "Width alone");
    add("--tile-height", options.tileHeight, ParseUnits, "UNITS", "Height alone");
    command
        .add_option_function<std::vector<std::string>>(
            "--origin",
            [&job](const std::vector<std::string>& texts) {
                const auto numbers = ParseNumbers("--origin", texts);
                job.origin = Point{numbers[0], numbers[1]};
            },
            "Upper left corner of the grid, so that several layers share one (default: the layer's)")
        ->type_name("X Y")
        ->expected(2);
    command
        .add_option_function<std::vector<std::string>>(
            "--clip", [&job](const std::vector<std::string>& texts) { job.clip = ParseClip(texts); },
            "Cut only what lies in this area, in map units")
        ->type_name("XMIN YMIN XMAX YMAX")
        ->expected(4);
    command
        .add_option(
            "--tile-names", job.tileNames,
            "Names of the tiles, with the fields {source}, {row}, {column}, {x} and {y}; / makes folders")
        ->type_name("PATTERN")
        ->capture_default_str();
    command.add_flag("--skip-blank", job.skipBlank, "Leave out tiles that hold only nodata or transparency");
}

void AddFormat(CLI::App& command, tiling::RasterJob& job) {
    BeginGroup(command, "Format");
    const auto add = [&](const char* name, auto& value, auto parse, const char* type, const char* text) {
        return AddValue(command, name, value, parse, text)->type_name(type);
    };
    command
        .add_option("--format", job.format,
                    "Extension or GDAL driver: png, jpg, tif, COG, webp, jp2, ..., any that GDAL creates")
        ->type_name("NAME")
        ->capture_default_str();
    command
        .add_option("--co", job.options,
                    "Creation option of the GDAL driver, as for GDAL's tools; repeatable")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    add("--quality", job.quality, ParseQuality, "1-100", "For formats with losses")
        ->default_str(std::to_string(job.quality));
    AddChoice<raster::Effort>(command, "--effort", job.effort,
                              {{"normal", raster::Effort::Normal},
                               {"fast", raster::Effort::Fast},
                               {"small", raster::Effort::Small}},
                              "How hard PNG tiles are packed; no pixel changes");
    add("--bands", job.bands, ParseBands, "N,N,...", "Bands to take, in this order (default: all)");
    add(
        "--values", job.values, [&job](const std::string& text) { return ParseValues(text, job); },
        "stretch|stretch MIN MAX|refuse",
        "What becomes of cells that the format cannot hold: one stretch of the whole layer to 8 bits, or an "
        "error")
        ->default_str("stretch");
    add("--converter", job.converter, ParseProgram, "PROGRAM",
        "Program that converts the tiles: convert, magick, gm, vips, gdal_translate, or any that takes "
        "SOURCE TARGET QUALITY");
    add(
        "--name", job.name,
        [](const std::string& text) {
            if (text.empty()) throw UsageError("is empty; give the image file");
            return text;
        },
        "FILE", "Image file that the converter gets, where it is not the layer's own");
}

void AddProducts(CLI::App& command, RasterOptions& options) {
    BeginGroup(command, "Output");
    const auto add = [&](const char* name, bool& value, const char* text) {
        command.add_flag(name, value, text);
    };
    tiling::RasterJob& job = options.job;
    add("--world-files", job.worldFiles,
        "Write a world file beside each tile, and .aux.xml where the format cannot say where it lies");
    add("--vrt", job.vrt, "Write mosaic.vrt, one virtual raster over all tiles");
    add("--preview", job.preview, "Write index.html, a page that shows the tiles where they lie");
    AddParts(command, job);
    add("--dry-run", options.dryRun, "Print grid, names and counts, and write nothing");
}

}  // namespace

Command AddRaster(CLI::App& application) {
    CLI::App* const app = application.add_subcommand(
        "raster", "Cut a raster layer into image tiles with an index of their places");
    const auto options = std::make_shared<RasterOptions>();
    AddPlaces(*app, *options);
    AddGrid(*app, *options);
    AddFormat(*app, options->job);
    AddProducts(*app, *options);
    AddJobOptions(*app, options->job, options->session, "read, encode and convert");
    return {app, [options] { return Run(*options); }};
}

}  // namespace orvo::host
