// Lays a grid of tiles over a vector layer.
#pragma once

#include <memory>
#include <string>

#include "platform/Geometry.h"
#include "platform/Utility.h"
#include "platform/Vector.h"

namespace orvo {

class Statements;
class TileArray;

/// Lays a regular grid of equal tiles over the extent of a vector layer, names the tiles, clips geometries to
/// them and finds the tile of a point.
///
/// Set LayerExtent or VectorLayer first, then the tile sizes or the counts, then call InitializeTiles; the
/// members that ask for a tile work from then on. Columns count from 1 at the west edge, rows from 1 at the
/// south edge. The last column and row are not cut back to the extent. Install a platform first. Not for use
/// from several threads.
///
/// **The grid does not set the height of a tile's envelope.** It writes XMin, YMin, Width and, with the tile
/// height, Depth. So the envelope of a tile has no height until its owner sets one, and Clip and IsInside
/// find nothing, or fail, before. A host has to do this right after InitializeTiles:
///
///     for (Long y = 1; y <= grid.TileCountY(); ++y)
///         for (Long x = 1; x <= grid.TileCountX(); ++x) {
///             const auto tile = grid.GetTileExtent(x, y);
///             tile->Height(tile->Depth());
///         }
///
/// No member reports a failure to its caller: the error dialog shows it and the user chooses how the member
/// goes on. Only a failure of the dialog itself, such as a log that cannot be written, reaches the caller.
/// Setters do not check what they are given. Objects that are handed in are held by reference and released
/// with this object; releasing a grid that was never initialized is itself a failure that the dialog shows.
class clsTileVector {
  public:
    /// Sets the defaults (one column, one row, sizes 0) and the process-wide language offset.
    clsTileVector();
    ~clsTileVector();
    clsTileVector(const clsTileVector&) = delete;
    clsTileVector& operator=(const clsTileVector&) = delete;

    /// A new, initialized grid with this one's tile sizes over another extent, or over the same envelope
    /// object where none is given. Counts follow from the extent; Id and tiles are not copied, so the heights
    /// of the new grid's envelopes are to be set.
    std::shared_ptr<clsTileVector> Clone(const std::shared_ptr<IEnvelope>& objLayerExtent = nullptr);
    /// The text that GetTileTStream puts before a tile's identifier.
    void Id(const std::string& strNewValue);
    /// Kept for clones; never called.
    void StatusObject(const std::shared_ptr<IStatusDisplay>& NewValue);
    /// The area to cover; held by reference. Changes neither sizes nor counts.
    void LayerExtent(const std::shared_ptr<IEnvelope>& NewValue);
    /// Takes the extent from a layer; an empty reference changes nothing.
    void VectorLayer(const std::shared_ptr<ILayer>& NewValue);
    /// Sets the number of columns and, where there is an extent, the tile width that gives it: the quotient
    /// plus 0.5, rounded half to even, so that an odd whole quotient gains 1.
    void TileCountX(Long CountX);
    Long TileCountX() const;
    /// Sets the number of rows. Where there is an extent, the row height goes into the tile **width**; the
    /// tile height stays. A host that configures by counts sets TileHeight, and TileWidth again, itself.
    void TileCountY(Long CountY);
    Long TileCountY() const;
    /// Tile width in whole map units, −1 for the extent's whole width. Without an extent nothing is stored.
    /// A size other than 0 derives the number of columns as long as that is 1 or less; a count of 2 or more
    /// is kept.
    void TileWidth(Long Width);
    /// Tile height; see TileWidth.
    void TileHeight(Long Height);
    /// The number of tiles that reach into the extent, walked tile by tile; time grows with the result. It
    /// can differ from TileCountX × TileCountY, which are set, or rest on the extent's whole-number size.
    Long TileCount();
    /// Builds the records anew: grp0, grp1 and so on, row by row from the south-west. About 140 bytes a tile,
    /// its envelope included. Tiles get no envelope where a size is 0 or the extent is missing.
    void InitializeTiles();
    /// A tile's identifier.
    std::string GetTileID(Long lngNrX, Long lngNrY);
    /// A tile's own envelope, shared: who changes it changes the tile. (0, 0) gives a new envelope with the
    /// XMin, YMin and Width of the layer's extent and its height as Depth; an empty reference where a size is
    /// 0 or the extent is missing.
    std::shared_ptr<IEnvelope> GetTileExtent(Long lngNrX, Long lngNrY);
    /// A tile's name in the host's output: `strID`, or Id where that is empty, and the tile's identifier;
    /// "grp-1" stands for the whole layer, (0, 0).
    std::string GetTileTStream(Long lngNrX, Long lngNrY, const std::string& strID = "");
    /// A copy of a polyline, polygon or multipoint, cut to a tile; an empty reference where nothing is left.
    /// A polygon that covers the whole tile gives nothing, and so does any other kind of geometry.
    std::shared_ptr<IGeometry> Clip(Long lngX, Long lngY, const std::shared_ptr<IGeometry>& objInGeometry);
    /// Whether a point lies within a tile; a point on its edge does not. With −1 for both numbers, finds the
    /// tile and writes its numbers back; where no tile holds the point they end one above the counts, and far
    /// outside it is a failure (9).
    bool IsInside(Long& lngX, Long& lngY, const std::shared_ptr<IGeometry>& objGeometry);

  private:
    friend class TileVectorProbe;  // tests of private state

    std::shared_ptr<IEnvelope> makeTileExtent(Long lngNrX, Long lngNrY);
    bool isInsideTile(Long lngX, Long lngY, const std::shared_ptr<IGeometry>& objGeometry);

    TileArray& Tiles() const;
    /// @param n number of the tile named last
    void FillTile(Statements& run, Long x, Long y, Long& n);
    void SetExtentOfLayer(Statements& run, const std::shared_ptr<IEnvelope>& envelope) const;
    void GuessTile(Statements& run, Long& lngX, Long& lngY, const std::shared_ptr<IGeometry>& objGeometry,
                   bool& result);

    std::shared_ptr<IEnvelope> layerExtent_;
    std::shared_ptr<IStatusDisplay> statusObject_;
    Long tileWidth_ = 0;  ///< whole map units
    Long tileHeight_ = 0;
    Long tileCountX_ = 0;  ///< creation sets both counts to 1
    Long tileCountY_ = 0;
    std::string id_;
    std::unique_ptr<TileArray> tiles_;  ///< none until InitializeTiles
};

}  // namespace orvo
