// clsTileVector: the tile records and what is asked of them.
#include "errorreport/Procedure.h"
#include "platform/Platform.h"
#include "support/Arithmetic.h"
#include "tilevector/TileArray.h"
#include "tilevector/clsTileVector.h"

namespace orvo {
namespace {

constexpr ProcedureText kClone{
    "[clsTileVector] Public Function Clone(Optional objLayerExtent As esrigeometry.IEnvelope = Nothing) As "
    "clsTileVector",
    "clsTileVector", "Clone"};
constexpr ProcedureText kTileCount{"[clsTileVector] Public Property Get TileCount() As Long", "clsTileVector",
                                   "TileCount [GET]"};
constexpr ProcedureText kInitializeTiles{"[clsTileVector] Public Sub InitializeTiles()", "clsTileVector",
                                         "InitializeTiles"};
constexpr ProcedureText kGetTileID{
    "[clsTileVector] Public Function GetTileID(ByVal lngNrX As Long, lngNrY As Long) As String",
    "clsTileVector", "GetTileID"};
constexpr ProcedureText kGetTileExtent{
    "[clsTileVector] Public Function GetTileExtent(ByVal lngNrX As Long, lngNrY As Long) As "
    "esrigeometry.Envelope",
    "clsTileVector", "GetTileExtent"};
constexpr ProcedureText kMakeTileExtent{
    "[clsTileVector] Private Function makeTileExtent(ByVal lngNrX As Long, lngNrY As Long) As "
    "esriGeometry.Envelope",
    "clsTileVector", "makeTileExtent"};
/// Names a first parameter that the method does not take.
constexpr ProcedureText kGetTileTStream{
    "[clsTileVector] Public Function GetTileTStream(ByVal strVersion As String, ByVal lngNrX As Long, ByVal "
    "lngNrY As Long, Optional ByVal strID As String = \"\") As String",
    "clsTileVector", "GetTileTStream"};

constexpr Long kWholeLayer = -1;  ///< both tile numbers of makeTileExtent

}  // namespace

std::shared_ptr<clsTileVector> clsTileVector::Clone(const std::shared_ptr<IEnvelope>& objLayerExtent) {
    using Result = std::shared_ptr<clsTileVector>;
    return Procedure<Result>(kClone).Run([&](Statements& run, Result& result) {
        Result copy;
        run([&] { copy = std::make_shared<clsTileVector>(); });
        if (run.Test([&] { return objLayerExtent != nullptr; })) {
            run([&] { Object(copy).LayerExtent(objLayerExtent); });
        } else {
            run([&] { Object(copy).LayerExtent(layerExtent_); });
        }
        run([&] { Object(copy).StatusObject(statusObject_); });
        run([&] { Object(copy).TileWidth(tileWidth_); });
        run([&] { Object(copy).TileHeight(tileHeight_); });
        run([&] { Object(copy).InitializeTiles(); });
        run([&] { result = copy; });
    });
}

Long clsTileVector::TileCount() {
    return Procedure<Long>(kTileCount).Run([&](Statements& run, Long& result) {
        Long N = 0;
        Long Y = 0;
        Long X = 0;
        while (run.Test([&] { return Y < Object(layerExtent_).Height(); })) {
            while (run.Test([&] { return X < Object(layerExtent_).Width(); })) {
                run([&] { N = Add(N, 1); });
                run([&] { X = Add(X, tileWidth_); });
            }
            run([&] { Y = Add(Y, tileHeight_); });
            run([&] { X = 0; });
        }
        run([&] { result = N; });
    });
}

void clsTileVector::InitializeTiles() {
    Procedure<void>(kInitializeTiles).Run([&](Statements& run) {
        Long y = 0;
        Long x = 0;
        Long n = 0;
        run([&] {
            tiles_ = std::make_unique<TileArray>(Subtract(tileCountX_, 1), Subtract(tileCountY_, 1));
        });
        run.For(
            y, 0, [&] { return Subtract(tileCountY_, 1); },
            [&] {
                run.For(
                    x, 0, [&] { return Subtract(tileCountX_, 1); }, [&] { FillTile(run, x, y, n); });
            });
    });
}

void clsTileVector::FillTile(Statements& run, Long x, Long y, Long& n) {
    run([&] { n = Add(Multiply(y, tileCountX_), x); });
    run([&] { Tiles().At(x, y).emplace(); });
    run([&] { Tiles().Tile(x, y).Id("grp" + std::to_string(n)); });
    run([&] {
        const auto extent = makeTileExtent(Add(x, 1), Add(y, 1));
        Tiles().Tile(x, y).Extent(extent);
    });
}

std::shared_ptr<IEnvelope> clsTileVector::makeTileExtent(Long lngNrX, Long lngNrY) {
    using Result = std::shared_ptr<IEnvelope>;
    return Procedure<Result>(kMakeTileExtent).Run([&](Statements& run, Result& result) {
        Result envelope;
        double x0 = 0;
        double y0 = 0;
        if (run.Test([&] { return tileWidth_ == 0 || tileHeight_ == 0 || layerExtent_ == nullptr; })) return;
        if (run.Test([&] { return lngNrX == kWholeLayer && lngNrY == kWholeLayer; })) {
            run([&] { envelope = platform::Create(platform::Current().newEnvelope); });
            SetExtentOfLayer(run, envelope);
        } else {
            run([&] {
                x0 = Finite(Object(layerExtent_).XMin() + Multiply(Subtract(lngNrX, 1), tileWidth_));
            });
            run([&] {
                y0 = Finite(Object(layerExtent_).YMin() + Multiply(Subtract(lngNrY, 1), tileHeight_));
            });
            run([&] { envelope = platform::Create(platform::Current().newEnvelope); });
            run([&] { Object(envelope).XMin(x0); });
            run([&] { Object(envelope).YMin(y0); });
            run([&] { Object(envelope).Width(tileWidth_); });
            // The height goes into the depth, here and for the whole layer: the height is the host's to set.
            run([&] { Object(envelope).Depth(tileHeight_); });
        }
        run([&] { result = envelope; });
    });
}

void clsTileVector::SetExtentOfLayer(Statements& run, const std::shared_ptr<IEnvelope>& envelope) const {
    run([&] { Object(envelope).XMin(Object(layerExtent_).XMin()); });
    run([&] { Object(envelope).YMin(Object(layerExtent_).YMin()); });
    run([&] { Object(envelope).Width(Object(layerExtent_).Width()); });
    run([&] { Object(envelope).Depth(Object(layerExtent_).Height()); });
}

std::string clsTileVector::GetTileID(Long lngNrX, Long lngNrY) {
    return Procedure<std::string>(kGetTileID).Run([&](Statements& run, std::string& result) {
        run([&] { result = Tiles().Tile(Subtract(lngNrX, 1), Subtract(lngNrY, 1)).Id(); });
    });
}

std::shared_ptr<IEnvelope> clsTileVector::GetTileExtent(Long lngNrX, Long lngNrY) {
    using Result = std::shared_ptr<IEnvelope>;
    return Procedure<Result>(kGetTileExtent).Run([&](Statements& run, Result& result) {
        if (run.Test([&] { return lngNrY == 0 && lngNrX == 0; })) {
            run([&] { result = makeTileExtent(kWholeLayer, kWholeLayer); });
        } else {
            run([&] { result = Tiles().Tile(Subtract(lngNrX, 1), Subtract(lngNrY, 1)).Extent(); });
        }
    });
}

std::string clsTileVector::GetTileTStream(Long lngNrX, Long lngNrY, const std::string& strID) {
    return Procedure<std::string>(kGetTileTStream).Run([&](Statements& run, std::string& result) {
        std::string prefix;
        run([&] { prefix = strID; });
        if (run.Test([&] { return strID.empty(); })) run([&] { prefix = id_; });
        if (run.Test([&] { return lngNrX == 0 && lngNrY == 0; })) {
            run([&] { result = prefix + "grp-1"; });
        } else {
            run([&] { result = prefix + Tiles().Tile(Subtract(lngNrX, 1), Subtract(lngNrY, 1)).Id(); });
        }
    });
}

}  // namespace orvo
