// clsTileVector: geometries cut to a tile.
#include "errorreport/Procedure.h"
#include "support/Arithmetic.h"
#include "tilevector/TileArray.h"
#include "tilevector/clsTileVector.h"

namespace orvo {
namespace {

constexpr ProcedureText kClip{
    "[clsTileVector] Public Function Clip(ByVal lngX As Long, ByVal lngY As Long, ByRef objInGeometry As "
    "esrigeometry.IGeometry) As esrigeometry.IGeometry",
    "clsTileVector", "Clip"};

using Geometry = std::shared_ptr<IGeometry>;

bool CrossesOrOverlaps(const Geometry& geometry, const std::shared_ptr<IEnvelope>& tile) {
    const auto relation = As<IRelationalOperator>(geometry);
    const bool crosses = relation->Crosses(tile);
    const bool overlaps = relation->Overlaps(tile);
    return crosses || overlaps;
}

}  // namespace

Geometry clsTileVector::Clip(Long lngX, Long lngY, const Geometry& objInGeometry) {
    return Procedure<Geometry>(kClip).Run([&](Statements& run, Geometry& result) {
        auto type = GeometryType::Null;
        run([&] { result.reset(); });
        run([&] { type = Object(objInGeometry).GeometryType(); });
        const bool isShape = type == GeometryType::Polyline || type == GeometryType::Polygon;
        if (!isShape && type != GeometryType::Multipoint) return;
        std::shared_ptr<IEnvelope> tile;
        Geometry copy;
        run([&] { tile = Tiles().Tile(Subtract(lngX, 1), Subtract(lngY, 1)).Extent(); });
        run([&] { copy = As<IClone>(objInGeometry)->Clone(); });
        if (run.Test([&] { return As<IRelationalOperator>(copy)->Within(tile); })) {
            run([&] { result = copy; });
            return;
        }
        // A line or an area that is disjoint from the tile, only touches it or covers it gives nothing.
        if (isShape && !run.Test([&] { return CrossesOrOverlaps(copy, tile); })) return;
        run([&] { As<ITopologicalOperator>(copy)->Clip(tile); });
        if (run.Test([&] { return !Object(copy).IsEmpty(); })) run([&] { result = copy; });
    });
}

}  // namespace orvo
