// Small rasters for tests, and what tiles show.
#pragma once

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <optional>

#include "platform/Platform.h"
#include "platform/gdal/RasterIO.h"
#include "platform/gdal/RasterLayer.h"
#include "platform/gdal/Startup.h"
#include "platform/memory/Envelope.h"
#include "tests/adapters/TempFolder.h"

namespace orvo {

/// Cell value by column, row and band (from 0).
using CellFunction = std::function<double(int, int, int)>;

struct RasterSpec {
    int width = 10;
    int height = 10;
    int bands = 1;
    GDALDataType type = GDT_Byte;
    CellFunction cell = [](int x, int y, int band) { return (x * 7 + y * 13 + band * 50) % 256; };
    std::optional<double> nodata{};
    bool alpha = false;  ///< the last band is alpha
    std::vector<GDALColorEntry> palette{};
    std::array<double, 6> transform{1000, 2, 0, 5000, 0, -3};
    const char* driver = "GTiff";
    std::vector<const char*> options{};
};

/// All cells of a band, row by row: read into a vector, or written from it.
inline void Transfer(GDALRWFlag way, GDALRasterBand& band, std::vector<double>& cells) {
    const int width = band.GetXSize(), height = band.GetYSize();
    cells.resize(static_cast<std::size_t>(width * height));
    ASSERT_EQ(
        band.RasterIO(way, 0, 0, width, height, cells.data(), width, height, GDT_Float64, 0, 0, nullptr),
        CE_None);
}

inline std::vector<double> Cells(GDALRasterBand& band) {
    std::vector<double> cells;
    Transfer(GF_Read, band, cells);
    return cells;
}

inline void WriteRaster(const std::string& path, const RasterSpec& spec) {
    gdal::Start();
    CPLStringList options;
    for (const char* option : spec.options) options.AddString(option);
    auto transform = spec.transform;
    GDALDriver* const memory = GetGDALDriverManager()->GetDriverByName("MEM");
    GDALDatasetUniquePtr image(memory->Create("", spec.width, spec.height, spec.bands, spec.type, nullptr));
    image->SetGeoTransform(transform.data());
    for (int b = 0; b < spec.bands; ++b) {
        GDALRasterBand& band = *image->GetRasterBand(b + 1);
        constexpr GDALColorInterp kColours[] = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand};
        if (spec.bands - (spec.alpha ? 1 : 0) == 3 && b < 3) band.SetColorInterpretation(kColours[b]);
        if (spec.alpha && b == spec.bands - 1) band.SetColorInterpretation(GCI_AlphaBand);
        if (spec.nodata) band.SetNoDataValue(*spec.nodata);
        std::vector<double> cells;
        for (int i = 0; i < spec.width * spec.height; ++i)
            cells.push_back(spec.cell(i % spec.width, i / spec.width, b));
        Transfer(GF_Write, band, cells);
    }
    if (!spec.palette.empty()) {
        GDALColorTable table;
        for (std::size_t i = 0; i < spec.palette.size(); ++i)
            table.SetColorEntry(static_cast<int>(i), &spec.palette[i]);
        image->GetRasterBand(1)->SetColorTable(&table);
    }
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName(spec.driver);
    GDALDatasetUniquePtr file(
        driver->CreateCopy(path.c_str(), image.get(), FALSE, options.List(), nullptr, nullptr));
    ASSERT_NE(file, nullptr) << CPLGetLastErrorMsg();
}

/// Red, green, blue and alpha as a viewer shows them; greys show in all three.
using Shown = std::array<int, 4>;

struct Picture {
    int width = 0;
    int height = 0;
    int bands = 0;
    GDALDataType type = GDT_Unknown;
    bool placed = false;
    std::vector<Shown> pixels;
    const Shown& At(int x, int y) const { return pixels.at(static_cast<std::size_t>(y * width + x)); }
};

inline GDALDatasetUniquePtr OpenFile(const std::string& path, unsigned flags = GDAL_OF_RASTER) {
    GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), flags));
    if (!file) throw RuntimeError(1, path + " cannot be opened");
    return file;
}

/// Reads an image without any code under test.
inline Picture Load(const std::string& path) {
    const auto file = OpenFile(path);
    GDALRasterBand& first = *file->GetRasterBand(1);
    std::array<double, 6> transform{};
    Picture picture{file->GetRasterXSize(),
                    file->GetRasterYSize(),
                    file->GetRasterCount(),
                    first.GetRasterDataType(),
                    file->GetGeoTransform(transform.data()) == CE_None,
                    {}};
    picture.pixels.resize(static_cast<std::size_t>(picture.width * picture.height));
    for (int c = 0; c < 3; ++c) {
        GDALRasterBand& band = *file->GetRasterBand(picture.bands >= 3 ? c + 1 : 1);
        const auto cells = Cells(band);
        const auto mask = Cells(*band.GetMaskBand());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            Shown& shown = picture.pixels[i];
            shown[static_cast<std::size_t>(c)] = static_cast<int>(cells[i]);
            // Nodata counts per band; a pixel is hidden where all bands are.
            shown[3] = std::max(shown[3], static_cast<int>(mask[i]));
        }
    }
    if (const GDALColorTable* table = first.GetColorTable()) {
        for (Shown& shown : picture.pixels) {
            const GDALColorEntry* entry = table->GetColorEntry(shown[0]);
            shown = {entry->c1, entry->c2, entry->c3, shown[3] == 0 ? 0 : entry->c4};
        }
    }
    return picture;
}

/// Every pixel shows what the function says of its column and row.
template <class Expected>
void ExpectPixels(const Picture& picture, const Expected& expected) {
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x)
            ASSERT_EQ(picture.At(x, y), expected(x, y)) << "at " << x << ", " << y;
    }
}

/// A folder, a platform that makes envelopes, and a conversion service.
struct GdalTest : testing::Test {
    GdalTest() {
        platform::Platform made;
        made.newEnvelope = [] { return std::make_shared<memory::Envelope>(); };
        platform::Install(made);
    }
    ~GdalTest() override { platform::Install({}); }

    std::string Make(const std::string& name, const RasterSpec& spec) {
        WriteRaster(folder_ / name, spec);
        return folder_ / name;
    }
    std::shared_ptr<gdal::RasterLayer> MakeLayer(const RasterSpec& spec) {
        return gdal::OpenRasterLayer(Make("source.tif", spec));
    }
    /// The envelope of a part given in cells, which need not be whole.
    static memory::Envelope CellBox(const gdal::RasterLayer& layer, double left, double top, double right,
                                    double bottom) {
        const auto& t = layer.GeoTransform();
        memory::Envelope box;
        box.XMin(t[0] + left * t[1]), box.XMax(t[0] + right * t[1]);
        box.YMin(t[3] + bottom * t[5]), box.YMax(t[3] + top * t[5]);
        return box;
    }
    /// Exports whole cells; returns the file written.
    std::string Export(gdal::RasterLayer& layer, const std::string& name, int left, int top, int columns,
                       int rows, Integer quality = 0) {
        reason_.clear();
        return io_->ExportRasterWindow(layer, out_ / name, quality,
                                       CellBox(layer, left, top, left + columns, top + rows), columns, rows,
                                       reason_);
    }

    void ExpectRefused(gdal::RasterLayer& layer, const std::string& name, int left, int top, int columns,
                       int rows) {
        EXPECT_EQ(Export(layer, name, left, top, columns, rows), "") << name;
        EXPECT_NE(reason_, "") << name;
    }

    TempFolder folder_;
    TempFolder out_;
    std::shared_ptr<IRasterIO> io_ = gdal::NewRasterIO();
    std::string reason_;
};

}  // namespace orvo
