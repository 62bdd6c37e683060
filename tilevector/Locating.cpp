// clsTileVector: the tile that holds a point.
#include <cmath>

#include "errorreport/Procedure.h"
#include "support/Arithmetic.h"
#include "support/GUIApi.h"
#include "tilevector/TileArray.h"
#include "tilevector/clsTileVector.h"

namespace orvo {
namespace {

/// Of the public method and of its private companion, whose parameters it describes.
constexpr ProcedureText kIsInside{
    "[clsTileVector] Public Function IsInside(ByVal lngX As Long, ByVal lngY As Long, ByRef objGeometry As "
    "esriGeometry.IGeometry) As Boolean",
    "clsTileVector", "IsInside"};

constexpr Long kFindTile = -1;  ///< both tile numbers of IsInside

/// The 1-based tile number `distance` away from the grid's origin, `count` at most; there is no lower limit.
Long TileNumber(double distance, double tileSize, Long count) {
    const Variant number = Min({std::trunc(Divide(distance, tileSize)) + 1, count});
    if (const auto* computed = std::get_if<double>(&number)) return ToLong(*computed);
    const auto* capped = std::get_if<Long>(&number);
    return capped != nullptr ? *capped : 0;  // Empty where Min was left
}

}  // namespace

bool clsTileVector::IsInside(Long& lngX, Long& lngY, const std::shared_ptr<IGeometry>& objGeometry) {
    return Procedure<bool>(kIsInside).Run([&](Statements& run, bool& result) {
        run([&] { result = false; });
        if (run.Test([&] { return Object(objGeometry).GeometryType() != GeometryType::Point; })) return;
        if (run.Test([&] { return lngX != kFindTile || lngY != kFindTile; })) {
            run([&] { result = isInsideTile(lngX, lngY, objGeometry); });
            return;
        }
        GuessTile(run, lngX, lngY, objGeometry, result);
        if (run.Test([&] { return result; })) return;
        // The caller's variables are the counters, so a search in vain leaves them one above the counts.
        run.For(
            lngY, 1, [&] { return TileCountY(); },
            [&] {
                run.For(
                    lngX, 1, [&] { return TileCountX(); },
                    [&] {
                        if (run.Test([&] { return isInsideTile(lngX, lngY, objGeometry); })) {
                            run([&] { result = true; });
                        }
                        return !result;
                    });
                return !result;
            });
    });
}

/// Computes the probable tile from the south-west one and tests it.
void clsTileVector::GuessTile(Statements& run, Long& lngX, Long& lngY,
                              const std::shared_ptr<IGeometry>& objGeometry, bool& result) {
    std::shared_ptr<IEnvelope> tile;
    std::shared_ptr<IPoint> point;
    double dx = 0;
    double dy = 0;
    run([&] { tile = Tiles().Tile(0, 0).Extent(); });
    run([&] { point = As<IPoint>(objGeometry); });
    run([&] { dx = Finite(Object(point).X() - Object(tile).XMin()); });
    run([&] { dy = Finite(Object(point).Y() - Object(tile).YMin()); });
    run([&] { lngX = TileNumber(dx, Object(tile).Width(), tileCountX_); });
    run([&] { lngY = TileNumber(dy, Object(tile).Height(), tileCountY_); });
    run([&] { tile = Tiles().Tile(Subtract(lngX, 1), Subtract(lngY, 1)).Extent(); });
    run([&] { result = As<IRelationalOperator>(point)->Within(tile); });
}

bool clsTileVector::isInsideTile(Long lngX, Long lngY, const std::shared_ptr<IGeometry>& objGeometry) {
    return Procedure<bool>(kIsInside).Run([&](Statements& run, bool& result) {
        std::shared_ptr<IEnvelope> tile;
        run([&] { result = false; });
        if (run.Test([&] { return Object(objGeometry).GeometryType() == GeometryType::Point; })) {
            run([&] { tile = Tiles().Tile(Subtract(lngX, 1), Subtract(lngY, 1)).Extent(); });
            run([&] { result = As<IRelationalOperator>(objGeometry)->Within(tile); });
        }
    });
}

}  // namespace orvo
