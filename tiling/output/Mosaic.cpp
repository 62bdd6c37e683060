#include "tiling/output/Mosaic.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>

#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

/// What a tile offers to the mosaic.
struct Source {
    const PlacedTile* tile = nullptr;
    int width = 0;  ///< pixels of the file
    int height = 0;
    int colours = 1;  ///< 1 for grey, 3 for red, green and blue, however they are stored
    bool alpha = false;
    bool palette = false;
    GDALDataType type = GDT_Byte;
    std::optional<double> nodata;
};

std::string Digits(double value) {
    std::array<char, 40> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.17g", value));
    return text.data();
}

std::string Escaped(const std::string& text) {
    char* const escaped = CPLEscapeString(text.c_str(), static_cast<int>(text.size()), CPLES_XML);
    std::string copy = escaped;
    CPLFree(escaped);
    return copy;
}

bool HasTransparency(const GDALColorTable& colours) {
    for (int i = 0; i < colours.GetColorEntryCount(); ++i) {
        if (colours.GetColorEntry(i)->c4 < 255) return true;
    }
    return false;
}

Source Look(const std::string& folder, const PlacedTile& tile) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const std::string path = folder + "/" + tile.name;
    const std::unique_ptr<GDALDataset> dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    if (!dataset || dataset->GetRasterCount() == 0) {
        throw RunError("no mosaic: GDAL cannot read the tile " + tile.name);
    }
    GDALRasterBand& first = *dataset->GetRasterBand(1);
    const int bands = dataset->GetRasterCount();
    Source source;
    source.tile = &tile;
    source.width = dataset->GetRasterXSize();
    source.height = dataset->GetRasterYSize();
    source.type = first.GetRasterDataType();
    if (const GDALColorTable* const colours = first.GetColorTable(); bands == 1 && colours != nullptr) {
        source.palette = true;
        source.colours = 3;
        source.alpha = HasTransparency(*colours);
        return source;
    }
    source.alpha = dataset->GetRasterBand(bands)->GetColorInterpretation() == GCI_AlphaBand;
    source.colours = bands >= 3 ? 3 : 1;
    int has = 0;
    const double nodata = first.GetNoDataValue(&has);
    if (has != 0) source.nodata = nodata;
    return source;
}

class Mosaic {
  public:
    Mosaic(const std::string& folder, const std::vector<PlacedTile>& tiles, double cellWidth,
           double cellHeight)
        : cellWidth_(cellWidth), cellHeight_(cellHeight), area_(tiles.front().placement) {
        for (const PlacedTile& tile : tiles) {
            const Rectangle& place = tile.placement;
            area_ = {std::min(area_.xMin, place.xMin), std::min(area_.yMin, place.yMin),
                     std::max(area_.xMax, place.xMax), std::max(area_.yMax, place.yMax)};
            sources_.push_back(Look(folder, tile));
            const Source& source = sources_.back();
            colours_ = std::max(colours_, source.colours);
            alpha_ = alpha_ || source.alpha;
            type_ = GDALDataTypeUnion(type_, source.type);
            if (source.nodata) nodata_ = source.nodata;
        }
    }

    std::string Text(const std::string& system) const {
        std::string text = "<VRTDataset rasterXSize=\"" + Size(area_.xMax - area_.xMin, cellWidth_) +
                           "\" rasterYSize=\"" + Size(area_.yMax - area_.yMin, cellHeight_) + "\">\n";
        if (!system.empty()) {
            text += "  <SRS dataAxisToSRSAxisMapping=\"" + AxisMapping(system) + "\">" + Escaped(system) +
                    "</SRS>\n";
        }
        text += "  <GeoTransform>" + Digits(area_.xMin) + ", " + Digits(cellWidth_) + ", 0, " +
                Digits(area_.yMax) + ", 0, " + Digits(-cellHeight_) + "</GeoTransform>\n";
        for (int band = 1; band <= colours_; ++band) text += Band(band, false);
        if (alpha_) text += Band(colours_ + 1, true);
        return text + "</VRTDataset>\n";
    }

  private:
    static std::string Size(double span, double cell) {
        return std::to_string(std::max(1L, std::lround(span / cell)));
    }

    /// Which axis of the system is x and which y.
    static std::string AxisMapping(const std::string& system) {
        OGRSpatialReference read;
        read.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        if (read.importFromWkt(system.c_str()) != OGRERR_NONE) return "1,2";
        std::string text;
        for (const int axis : read.GetDataAxisToSRSAxisMapping()) {
            text += (text.empty() ? "" : ",") + std::to_string(axis);
        }
        return text;
    }

    std::string Band(int number, bool isAlpha) const {
        const std::array<const char*, 3> colours{"Red", "Green", "Blue"};
        const std::string meaning = isAlpha         ? "Alpha"
                                    : colours_ == 1 ? "Gray"
                                                    : colours.at(static_cast<std::size_t>(number - 1));
        std::string text = std::string("  <VRTRasterBand dataType=\"") + GDALGetDataTypeName(type_) +
                           "\" band=\"" + std::to_string(number) + "\">\n    <ColorInterp>" + meaning +
                           "</ColorInterp>\n";
        if (nodata_ && !alpha_) text += "    <NoDataValue>" + Digits(*nodata_) + "</NoDataValue>\n";
        for (const Source& source : sources_) text += Part(source, number, isAlpha);
        return text + "  </VRTRasterBand>\n";
    }

    /// One tile in one band.
    std::string Part(const Source& source, int number, bool isAlpha) const {
        int band = isAlpha ? source.colours + 1 : std::min(number, source.colours);
        std::string how;
        if (source.palette) {
            how = "      <ColorTableComponent>" + std::to_string(isAlpha ? 4 : number) +
                  "</ColorTableComponent>\n";
            band = 1;
        } else if (isAlpha && !source.alpha) {
            how = "      <ScaleOffset>255</ScaleOffset>\n      <ScaleRatio>0</ScaleRatio>\n";
            band = 1;
        } else if (source.nodata && !isAlpha) {
            how = "      <NODATA>" + Digits(*source.nodata) + "</NODATA>\n";
        }
        const std::string kind = how.empty() ? "SimpleSource" : "ComplexSource";
        return "    <" + kind + ">\n      <SourceFilename relativeToVRT=\"1\">" + Escaped(source.tile->name) +
               "</SourceFilename>\n      <SourceBand>" + std::to_string(band) + "</SourceBand>\n" +
               Windows(source) + how + "    </" + kind + ">\n";
    }

    std::string Windows(const Source& source) const {
        const Rectangle& place = source.tile->placement;
        return "      <SrcRect xOff=\"0\" yOff=\"0\" xSize=\"" + std::to_string(source.width) +
               "\" ySize=\"" + std::to_string(source.height) + "\"/>\n      <DstRect xOff=\"" +
               Digits(Whole((place.xMin - area_.xMin) / cellWidth_)) + "\" yOff=\"" +
               Digits(Whole((area_.yMax - place.yMax) / cellHeight_)) + "\" xSize=\"" +
               Digits(Whole((place.xMax - place.xMin) / cellWidth_)) + "\" ySize=\"" +
               Digits(Whole((place.yMax - place.yMin) / cellHeight_)) + "\"/>\n";
    }

    /// A number of pixels without the noise of its arithmetic.
    static double Whole(double pixels) {
        const double whole = std::round(pixels);
        return std::abs(pixels - whole) < 1e-6 ? whole : pixels;
    }

    double cellWidth_;
    double cellHeight_;
    Rectangle area_;
    std::vector<Source> sources_;
    int colours_ = 1;
    bool alpha_ = false;
    GDALDataType type_ = GDT_Byte;
    std::optional<double> nodata_;
};

}  // namespace

std::string MosaicText(const std::string& folder, const std::vector<PlacedTile>& tiles,
                       const std::string& system, double cellWidth, double cellHeight) {
    return Mosaic(folder, tiles, cellWidth, cellHeight).Text(system);
}

}  // namespace orvo::tiling
