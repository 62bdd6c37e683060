#include "tiling/raster/RasterPlan.h"

#include <filesystem>
#include <utility>

#include "platform/gdal/SourceFiles.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"
#include "tiling/output/SourceStamp.h"
#include "tiling/output/TileIndex.h"

namespace fs = std::filesystem;

namespace orvo::tiling {
namespace {

std::shared_ptr<gdal::RasterLayer> Open(const RasterJob& job) {
    if (job.inputs.empty()) throw UsageError("INPUT is missing; name a raster file");
    for (const std::string& input : job.inputs) {
        RefuseStream(input);
        RefuseBackslash("INPUT", input);
    }
    RefuseBackslash("--name", job.name);
    if (!job.name.empty() && !fs::exists(job.name))
        throw UsageError("--name " + job.name + " is no file; give the image file that the converter gets");
    return gdal::OpenRasterLayer(gdal::RasterSource{job.inputs, job.bands});
}

Json Edges(const std::optional<Rectangle>& r) {
    return r ? Json{r->xMin, r->yMin, r->xMax, r->yMax} : Json(nullptr);
}

Json Options(const RasterJob& job) {
    const auto pair = [](const auto& value, auto first, auto second) {
        return value ? Json{(*value).*first, (*value).*second} : Json(nullptr);
    };
    using Range = std::pair<double, double>;
    return {{"tile_width", job.tileWidth},
            {"tile_height", job.tileHeight},
            {"tile_pixel_width", job.tilePixelWidth},
            {"tile_pixel_height", job.tilePixelHeight},
            {"origin", pair(job.origin, &Point::X, &Point::Y)},
            {"tile_names", job.tileNames},
            {"format", job.format},
            {"co", job.options},
            {"quality", job.quality},
            {"effort", static_cast<int>(job.effort)},
            {"converter", job.converter},
            {"bands", job.bands},
            {"values", job.values == Values::Stretch ? "stretch" : "refuse"},
            {"range", pair(job.range, &Range::first, &Range::second)},
            {"clip", Edges(job.clip)},
            {"name", job.name},
            {"skip_blank", job.skipBlank},
            {"world_files", job.worldFiles},
            {"vrt", job.vrt},
            {"preview", job.preview}};
}

Json GridAsJson(const RasterGrid& grid) {
    const CellRange& visited = grid.Whole();
    const Point corner = grid.CornerOf(0, 0), next = grid.CornerOf(1, 1);
    return {{"columns", grid.Columns()},
            {"rows", grid.Rows()},
            {"first_column", visited.column + 1},
            {"first_row", visited.row + 1},
            {"last_column", visited.column + visited.columns},
            {"last_row", visited.row + visited.rows},
            {"tile_pixels", {grid.TileWidth(), grid.TileHeight()}},
            {"tile_size", {next.X - corner.X, corner.Y - next.Y}},
            {"origin", {corner.X, corner.Y}}};
}

}  // namespace

RasterJob JobFromJson(const Json& job) {
    const Json& o = job.at("options");
    RasterJob made;
    const auto get = [&](const char* name, auto& value) { o.at(name).get_to(value); };
    job.at("inputs").get_to(made.inputs);
    job.at("program").get_to(made.program);
    get("tile_width", made.tileWidth);
    get("tile_height", made.tileHeight);
    get("tile_pixel_width", made.tilePixelWidth);
    get("tile_pixel_height", made.tilePixelHeight);
    if (const Json& at = o.at("origin"); !at.is_null()) made.origin = Point{at.at(0), at.at(1)};
    get("tile_names", made.tileNames);
    get("format", made.format);
    get("co", made.options);
    get("quality", made.quality);
    made.effort = static_cast<raster::Effort>(o.at("effort").get<int>());
    get("converter", made.converter);
    get("bands", made.bands);
    made.values = o.at("values") == "stretch" ? Values::Stretch : Values::Refuse;
    if (const Json& range = o.at("range"); !range.is_null())
        made.range = {range.at(0).get<double>(), range.at(1).get<double>()};
    if (const Json& e = o.at("clip"); !e.is_null()) made.clip = Rectangle{e.at(0), e.at(1), e.at(2), e.at(3)};
    get("name", made.name);
    get("skip_blank", made.skipBlank);
    get("world_files", made.worldFiles);
    get("vrt", made.vrt);
    get("preview", made.preview);
    return made;
}

RasterPlan::RasterPlan(const RasterJob& job)
    : job_(job),
      layer_(Open(job)),
      grid_(*layer_, job),
      maker_(std::make_shared<TileMaker>(layer_, job, grid_)),
      account_(job, grid_, maker_->Extension()) {}

std::vector<std::string> RasterPlan::SourceFiles() const {
    std::vector<std::string> files;
    for (const std::string& input : job_.inputs) {
        for (std::string& file : gdal::SourceFiles(layer_->Dataset(), input))
            files.push_back(std::move(file));
    }
    if (!job_.name.empty()) files.push_back(job_.name);
    return files;
}

std::vector<std::string> RasterPlan::Notices() const {
    std::vector<std::string> notices = grid_.Notices();
    for (std::string& notice : maker_->Notices()) notices.push_back(std::move(notice));
    return notices;
}

Json RasterPlan::JobAsJson() const {
    Json inputs = Json::array();
    for (const std::string& input : job_.inputs) inputs.push_back(FullName(input));
    return {{"generator", kGenerator},
            {"command", "raster"},
            {"program", job_.program},
            {"inputs", inputs},
            {"source", SourceStamps(SourceFiles())},
            {"options", Options(job_)},
            {"grid", GridAsJson(grid_)},
            {"names",
             {{"pattern", account_.Pattern()},
              {"source", account_.Source()},
              {"extension", maker_->Extension()}}}};
}

std::string RasterPlan::AsJson(const std::string& outdir) const {
    Json names = Json::array();
    for (std::int64_t tile = 0; tile < account_.Count(); ++tile) names.push_back(account_.NameOf(tile));
    const Json plan{{"input", job_.inputs.front()},
                    {"inputs", job_.inputs},
                    {"outdir", outdir},
                    {"grid", GridAsJson(grid_)},
                    {"tiles", {{"expected", account_.Count()}}},
                    {"names", names},
                    {"notices", Notices()}};
    return TextOf(plan, 2) + "\n";
}

}  // namespace orvo::tiling
