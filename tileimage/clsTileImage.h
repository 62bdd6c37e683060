// Cuts one raster layer into image tiles.
#pragma once

#include <memory>
#include <string>

#include "platform/Geometry.h"
#include "platform/Raster.h"
#include "platform/Scripting.h"
#include "platform/Utility.h"

namespace orvo {

class Statements;

/// Cuts one raster layer into image tiles and records each tile's envelope.
///
/// Set the output folder, format, quality, converter and status object, bind the layer with ImageLayer, set
/// TileWidth and TileHeight, call Tile and read TileObjectDict. Install a platform first. Not for use from
/// several threads.
///
/// No member reports a failure to its caller: the error dialog shows it and the user chooses how the member
/// goes on. Setters store what they are given; the member that uses a value decides what to do with it.
/// Objects that are handed in are held by reference and released with this object.
class clsTileImage {
  public:
    /// Sets the defaults and the process-wide language offset.
    clsTileImage();
    ~clsTileImage();
    clsTileImage(const clsTileImage&) = delete;
    clsTileImage& operator=(const clsTileImage&) = delete;

    /// Area of interest in map units; an empty reference takes it away. The envelope is never changed.
    void ClipEnvelope(const std::shared_ptr<IEnvelope>& objValue);
    /// Tile file name → envelope in map units. Always the same object; runs only add to it.
    std::shared_ptr<IDictionary> TileObjectDict();
    /// Target format as a bare extension, such as "png".
    void GraphicFormat(const std::string& NewValue);
    /// Name or path of the external conversion program.
    void GraphicConvertProg(const std::string& NewValue);
    /// Output quality, 1 to 100, for formats with losses.
    void GraphicQuality(Integer NewValue);
    /// Receives progress texts; an empty reference silences them.
    void StatusObject(const std::shared_ptr<IStatusDisplay>& NewValue);
    /// Binds the layer and derives name, path, extension, cell size and origin. An image that is neither
    /// file, folder nor in a geodatabase is reported in a message box, and Tile then does nothing.
    /// @param FileName the image file where it is not the layer's own path
    void ImageLayer(const std::shared_ptr<IRasterLayer>& NewValue, const std::string& FileName = "");
    /// The output folder.
    void SavePath(const std::string& NewValue);
    /// Tile width in whole map units, −1 for the whole raster. Needs a bound layer. The count of tiles is
    /// taken from the first width that gives more than one tile and kept from then on.
    void TileWidth(Long Width);
    /// Tile height; see TileWidth.
    void TileHeight(Long Height);
    /// Writes the tiles row by row from the top left. At most 999.
    /// @return true when the grid was walked to its end; single tiles may still be missing
    bool Tile();
    /// Opens a folder as a raster workspace; an empty reference where that failed and was left.
    std::shared_ptr<IRasterWorkspace> GetWorkspace(const std::string& strDir);

  private:
    friend class TileImageProbe;  // tests of private procedures

    struct Run;   // what one run holds
    struct Cell;  // what one cell of the grid holds

    void FullName(const std::string& strImageName, bool blnIsGDB);
    std::string SaveTIFFToWWW(const std::string& strFromAbsolutePathName);
    void CreateMessageText(const std::string& strText, Long lngMaxValue = -1, bool blnStep = false);
    std::string GetTileExtent(Long NrX, const Long& NrY) const;

    void WalkGrid(Statements& run, Run& job);
    void TileCell(Statements& run, Run& job);
    bool ClipCell(Statements& run, Cell& cell);
    bool TileExtern(Statements& run, Run& job, const Cell& cell);
    void TileByPlatform(Statements& run, Run& job, const Cell& cell);
    void RemoveSideFiles(Statements& run, Run& job, const std::string& tileFile);
    template <class MakeText>
    void Step(Statements& run, const MakeText& text, int line = __builtin_LINE());
    void AddTile(const Run& job, const Cell& cell);

    // Held objects and derived facts of the bound layer.
    std::shared_ptr<IRasterLayer> imageLayer_;
    std::shared_ptr<IStatusDisplay> statusObject_;
    std::string imageName_;         ///< file name without folder; empty when the image was rejected
    std::string imagePath_;         ///< absolute path
    std::string workingExtension_;  ///< lower case, without dot; Tile overwrites it and it stays
    double cellSizeX_ = 0;          ///< map units; creation sets these four to −1
    double cellSizeY_ = 0;
    double extentXMin_ = 0;  ///< the grid's origin is the top left corner
    double extentYMax_ = 0;

    // The grid.
    Long tileWidth_ = 0;  ///< as given, map units or −1
    Long tileHeight_ = 0;
    Long tilePixelWidth_ = 0;
    Long tilePixelHeight_ = 0;
    Long tileCountX_ = 0;  ///< creation sets both counts to 1
    Long tileCountY_ = 0;

    // Output.
    std::shared_ptr<IDictionary> tileObjectDict_;
    std::shared_ptr<IEnvelope> clipEnvelope_;
    std::string savePath_;
    std::string graphicFormat_;
    std::string graphicConvertProg_;
    Integer graphicQuality_ = 0;
};

}  // namespace orvo
