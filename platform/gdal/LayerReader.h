// Reading tiles of one layer as pixels that an image format can hold.
#pragma once

#include <optional>

#include "platform/gdal/BandPlan.h"
#include "platform/gdal/Pixels.h"
#include "platform/gdal/Stretch.h"
#include "platform/gdal/TileWindow.h"

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
    /// The dataset must outlive this object.
    explicit LayerReader(GDALDataset& dataset);

    /// Fills `pixels`, whose memory it reuses. Fails with number 57 where the source cannot be read.
    void Read(const TileWindow& window, const Holds& holds, Pixels& pixels);

    const BandPlan& Plan() const { return plan_; }

  private:
    bool IsStretched(const Holds& holds) const;
    Form FormFor(const Holds& holds);
    void ReadIndexed(const TileWindow& window, Pixels& pixels);
    void ReadExpanded(const TileWindow& window, Pixels& pixels);
    void ReadDirect(const TileWindow& window, Pixels& pixels);
    void ReadStretched(const TileWindow& window, Pixels& pixels);
    void ReadAlpha(const TileWindow& window, Pixels& pixels);
    void ClearNodata(Pixels& pixels) const;
    void SetTransparentColour(Pixels& pixels) const;

    GDALDataset& dataset_;
    BandPlan plan_;
    std::optional<Stretch> stretch_;
    std::vector<double> cells_;
    std::vector<std::uint16_t> indices_;
};

}  // namespace orvo::gdal
