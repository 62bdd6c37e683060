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
#include "tiling/output/ReferenceSystem.h"

namespace orvo::tiling {
namespace {

std::string Digits(double value) {
    std::array<char, 40> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.17g", value));
    return text.data();
}

/// A band of a tile: its type, and what else it says of itself, as elements of the virtual raster.
struct BandFacts {
    std::string type;
    std::string elements;
    bool operator==(const BandFacts&) const = default;
};

/// What a tile offers to the mosaic.
struct Source {
    PlacedTile tile;
    int width = 0;  ///< pixels of the file
    int height = 0;
    int colours = 1;  ///< 1 for grey, 3 for red, green and blue, however they are stored
    bool alpha = false;
    bool palette = false;
    GDALDataType type = GDT_Byte;
    std::optional<double> nodata;
    std::vector<BandFacts> bands;
};

bool HasTransparency(const GDALColorTable& colours) {
    for (int i = 0; i < colours.GetColorEntryCount(); ++i) {
        if (colours.GetColorEntry(i)->c4 < 255) return true;
    }
    return false;
}

std::string TableElement(const GDALColorTable& table) {
    std::string text = "    <ColorTable>\n";
    for (int i = 0; i < table.GetColorEntryCount(); ++i) {
        GDALColorEntry entry{};
        table.GetColorEntryAsRGB(i, &entry);
        const auto part = [](const char* name, short value) {
            return std::string(" ") + name + "=\"" + std::to_string(value) + "\"";
        };
        text += "      <Entry" + part("c1", entry.c1) + part("c2", entry.c2) + part("c3", entry.c3) +
                part("c4", entry.c4) + "/>\n";
    }
    return text + "    </ColorTable>\n";
}

std::string Element(const std::string& name, const std::string& text) {
    return "    <" + name + ">" + text + "</" + name + ">\n";
}

BandFacts FactsOf(GDALRasterBand& band) {
    BandFacts facts{GDALGetDataTypeName(band.GetRasterDataType()), ""};
    const std::string name = band.GetDescription();
    if (!name.empty()) facts.elements += Element("Description", Escaped(name));
    facts.elements += Element("ColorInterp", GDALGetColorInterpretationName(band.GetColorInterpretation()));
    int has = 0;
    const double nodata = band.GetNoDataValue(&has);
    if (has != 0) facts.elements += Element("NoDataValue", Digits(nodata));
    const double offset = band.GetOffset(&has);
    if (has != 0 && offset != 0) facts.elements += Element("Offset", Digits(offset));
    const double scale = band.GetScale(&has);
    if (has != 0 && scale != 1) facts.elements += Element("Scale", Digits(scale));
    const std::string unit = band.GetUnitType();
    if (!unit.empty()) facts.elements += Element("UnitType", Escaped(unit));
    if (const GDALColorTable* const table = band.GetColorTable()) facts.elements += TableElement(*table);
    return facts;
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
    source.tile = tile;
    source.width = dataset->GetRasterXSize();
    source.height = dataset->GetRasterYSize();
    source.type = first.GetRasterDataType();
    for (int band = 1; band <= bands; ++band) source.bands.push_back(FactsOf(*dataset->GetRasterBand(band)));
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
    Mosaic(const std::string& folder, const TileList& tiles, double cellWidth, double cellHeight)
        : cellWidth_(cellWidth), cellHeight_(cellHeight) {
        tiles([&](const PlacedTile& tile) {
            const Rectangle& place = tile.placement;
            if (sources_.empty()) area_ = place;
            area_ = {std::min(area_.xMin, place.xMin), std::min(area_.yMin, place.yMin),
                     std::max(area_.xMax, place.xMax), std::max(area_.yMax, place.yMax)};
            sources_.push_back(Look(folder, tile));
            Source& source = sources_.back();
            if (sources_.size() == 1) bands_ = source.bands;
            alike_ = alike_ && source.bands == bands_;
            source.bands = {};
            colours_ = std::max(colours_, source.colours);
            alpha_ = alpha_ || source.alpha;
            type_ = GDALDataTypeUnion(type_, source.type);
            if (source.nodata) nodata_ = source.nodata;
        });
    }

    std::string Text(const std::string& system) const {
        std::string text = "<VRTDataset rasterXSize=\"" + Size(area_.xMax - area_.xMin, cellWidth_) +
                           "\" rasterYSize=\"" + Size(area_.yMax - area_.yMin, cellHeight_) + "\">\n";
        text += SystemElement(system, 2);
        text += "  <GeoTransform>" + Digits(area_.xMin) + ", " + Digits(cellWidth_) + ", 0, " +
                Digits(area_.yMax) + ", 0, " + Digits(-cellHeight_) + "</GeoTransform>\n";
        for (int band = 1; alike_ && band <= static_cast<int>(bands_.size()); ++band) text += AlikeBand(band);
        for (int band = 1; !alike_ && band <= colours_; ++band) text += Band(band, false);
        if (!alike_ && alpha_) text += Band(colours_ + 1, true);
        return text + "</VRTDataset>\n";
    }

  private:
    static std::string Size(double span, double cell) {
        return std::to_string(std::max(1L, std::lround(span / cell)));
    }

    /// A band that all tiles have.
    std::string AlikeBand(int number) const {
        const BandFacts& facts = bands_[static_cast<std::size_t>(number - 1)];
        std::string text = "  <VRTRasterBand dataType=\"" + facts.type + "\" band=\"" +
                           std::to_string(number) + "\">\n" + facts.elements;
        for (const Source& source : sources_) text += SourceElement("SimpleSource", source, number, "");
        return text + "  </VRTRasterBand>\n";
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
        return SourceElement(how.empty() ? "SimpleSource" : "ComplexSource", source, band, how);
    }

    std::string SourceElement(const std::string& kind, const Source& source, int band,
                              const std::string& how) const {
        return "    <" + kind + ">\n      <SourceFilename relativeToVRT=\"1\">" + Escaped(source.tile.name) +
               "</SourceFilename>\n      <SourceBand>" + std::to_string(band) + "</SourceBand>\n" +
               Windows(source) + how + "    </" + kind + ">\n";
    }

    std::string Windows(const Source& source) const {
        const Rectangle& place = source.tile.placement;
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
    std::vector<BandFacts> bands_;  ///< of the first tile
    bool alike_ = true;             ///< all tiles have these
    int colours_ = 1;
    bool alpha_ = false;
    GDALDataType type_ = GDT_Byte;
    std::optional<double> nodata_;
};

}  // namespace

std::string MosaicText(const std::string& folder, const TileList& tiles, const std::string& system,
                       double cellWidth, double cellHeight) {
    return Mosaic(folder, tiles, cellWidth, cellHeight).Text(system);
}

}  // namespace orvo::tiling
