// Reading tiles of one layer as pixels that an image format can hold.
#pragma once

#include "platform/gdal/BandPlan.h"
#include "platform/gdal/Lazy.h"
#include "platform/gdal/Pixels.h"
#include "platform/gdal/RasterLayer.h"
#include "platform/gdal/ReadAhead.h"
#include "platform/gdal/ReadWindow.h"
#include "platform/gdal/Stretch.h"

class GDALRasterBand;

namespace orvo::gdal {

/// What an image format can hold beside 8-bit greys and colours.
struct Holds {
    bool sixteenBits = false;
    bool transparency = false;
    bool palette = false;
};

/// Cells of 8 bits are shown as they are, of 16 unsigned bits too where the format holds them; all others are
/// brought to 8 bits by the layer's stretch. Palettes are kept or expanded. Where the format has
/// transparency, these are transparent: cells that hold nodata in every colour band, cells that the mask
/// leaves out, and cells whose alpha says so. Where it has none, cells show as they are, and stretched nodata
/// as 0.
class LayerReader {
  public:
    /// The layer must outlive this object; it may be opened anew in between.
    /// @param range of the stretch; without one the layer's own is measured
    explicit LayerReader(RasterLayer& layer, std::optional<Range> range = {});

    /// Fills `pixels`, whose memory it reuses. Fails with number 57 where the source cannot be read.
    void Read(const TileWindow& window, const Holds& holds, Pixels& pixels);

    /// Reads the cells of bands of one type as they are, interleaved by pixels. Fails like Read.
    void ReadCells(const TileWindow& window, std::span<const int> bands, GDALDataType type,
                   unsigned char* cells);

    /// Prepares for another try after a failed read: opens the source anew and reads nothing ahead from then
    /// on. False where that was done before, so that another try is in vain; the source is opened anew all
    /// the same.
    bool Recover();

    RasterLayer& Layer() const { return layer_; }
    const BandPlan& Plan() const { return plan_; }
    /// Whether cells are brought to 8 bits.
    bool IsStretched(const Holds& holds) const;
    /// What Read gives. Fails like Read.
    Form FormFor(const Holds& holds);
    /// Fails with number 57 where the source cannot be read.
    const Stretch& LayerStretch();
    /// Whether a window shows nothing but nodata and full transparency. Fails like Read.
    bool IsBlank(const TileWindow& window);

  private:
    bool IsBlank(GDALRasterBand& band, const TileWindow& window) const;
    void ReadIndexed(const TileWindow& window, Pixels& pixels);
    void ReadExpanded(const TileWindow& window, Pixels& pixels);
    void ReadDirect(const TileWindow& window, Pixels& pixels);
    void ReadStretched(const TileWindow& window, Pixels& pixels);
    void ReadAlpha(const TileWindow& window, Pixels& pixels);
    void ClearNodata(Pixels& pixels) const;
    void SetTransparentColour(Pixels& pixels) const;

    RasterLayer& layer_;
    std::optional<Range> range_;
    BandPlan plan_;
    ReadAhead ahead_;
    Lazy<Stretch> stretch_;
    std::vector<double> cells_;
    std::vector<std::uint16_t> indices_;
};

}  // namespace orvo::gdal
