// The tile of a point.
#include "platform/gdal/Attributes.h"
#include "tiling/Errors.h"
#include "tiling/WatchedPlatform.h"
#include "tiling/vector/VectorGrid.h"
#include "tiling/vector/VectorJob.h"
#include "tiling/vector/VectorLayerSource.h"

namespace orvo::tiling {

LocatedTile LocatePoint(const VectorGridJob& job, double x, double y, const Callbacks& callbacks) {
    const WatchedPlatform watched(callbacks.interrupted, {});
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
    LocatedTile located{tile.column, tile.row, grid.Tiles().GetTileID(tile.column, tile.row),
                        grid.NameOf(tile.column, tile.row), tile.onEdge};
    located.shown = watched.FailuresShown();
    return located;
}

}  // namespace orvo::tiling
