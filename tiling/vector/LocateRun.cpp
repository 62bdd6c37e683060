// orvo-tile locate: the tile of a point.
#include <iostream>

#include "host/Session.h"
#include "platform/gdal/Attributes.h"
#include "tiling/Errors.h"
#include "tiling/vector/VectorGrid.h"
#include "tiling/vector/VectorJob.h"
#include "tiling/vector/VectorLayerSource.h"

namespace orvo::host {

int RunLocate(const VectorJob& job, double x, double y) {
    ProgressDisplay progress(std::cerr, ProgressMode::None);
    utility::Settings services;
    services.languageOffset = job.languageOffset;
    const auto desktop = InstallPlatform(
        job.onError, progress, [](const std::string&) {}, std::move(services));
    const auto layer = OpenLayer(job);
    VectorGrid grid(layer, job.sizes, job.prefix);
    geos::Shape place;
    place.type = GeometryType::Point;
    place.AddPoint({x, y});
    const TileNumbers tile = grid.Locate(geos::Geometry::Make(std::move(place)));
    if (tile.column == 0) {
        const geos::Bounds b = grid.Whole();
        std::string text = "no tile holds the point: the tiles lie from x ";
        gdal::AppendJson(text, b.xMin);
        gdal::AppendJson(text += " to ", b.xMax);
        gdal::AppendJson(text += " and from y ", b.yMin);
        gdal::AppendJson(text += " to ", b.yMax);
        throw RunError(text);
    }
    std::cout << "{\"column\":" << tile.column << ",\"row\":" << tile.row
              << ",\"id\":" << gdal::JsonText(grid.Tiles().GetTileID(tile.column, tile.row))
              << ",\"tile\":" << gdal::JsonText(grid.NameOf(tile.column, tile.row))
              << ",\"on_edge\":" << (tile.onEdge ? "true" : "false") << "}\n"
              << std::flush;
    if (!std::cout) throw RunError("the answer could not be written to standard output");
    return desktop->FailuresShown() == 0 ? kExitDone : kExitIncomplete;
}

}  // namespace orvo::host
