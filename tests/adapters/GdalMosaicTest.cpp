// Tiles put together must show the source, pixel for pixel.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

constexpr int kTile = 7;

struct Kind {
    const char* name;
    RasterSpec spec;
    /// What a format of 8 bits with transparency must show of a cell; by column and row.
    std::function<Shown(const RasterSpec&, int, int)> shown;
};

Shown AsIs(const RasterSpec& spec, int x, int y) {
    const auto cell = [&](int band) { return static_cast<int>(spec.cell(x, y, band)); };
    const int colours = spec.bands - (spec.alpha ? 1 : 0);
    const int alpha = spec.alpha ? cell(spec.bands - 1) : 255;
    if (colours < 3) return {cell(0), cell(0), cell(0), alpha};
    return {cell(0), cell(1), cell(2), alpha};
}

std::vector<std::array<short, 4>> SomePalette() {
    std::vector<std::array<short, 4>> palette;
    for (short i = 0; i < 40; ++i) {
        palette.push_back(
            {static_cast<short>(i * 6), static_cast<short>(255 - i), static_cast<short>(i * i % 256), 255});
    }
    return palette;
}

Shown ByPalette(const RasterSpec& spec, int x, int y) {
    const double cell = spec.cell(x, y, 0);
    const auto& c = spec.palette[static_cast<std::size_t>(cell)];
    return {c[0], c[1], c[2], cell == spec.nodata ? 0 : 255};
}

/// Linear from the least to the greatest valid cell, half up; hidden where there is no data.
Shown Stretched(const RasterSpec& spec, int x, int y) {
    const auto isHole = [&](double v) { return !std::isfinite(v) || (spec.nodata && v == *spec.nodata); };
    double low = std::numeric_limits<double>::max();
    double high = -low;
    for (int row = 0; row < spec.height; ++row) {
        for (int column = 0; column < spec.width; ++column) {
            for (int band = 0; band < spec.bands; ++band) {
                const double v = spec.cell(column, row, band);
                if (isHole(v)) continue;
                low = std::min(low, v);
                high = std::max(high, v);
            }
        }
    }
    Shown result{0, 0, 0, 0};
    for (int c = 0; c < 3; ++c) {
        const double v = spec.cell(x, y, spec.bands == 3 ? c : 0);
        if (isHole(v)) continue;
        const auto at = static_cast<std::size_t>(c);
        result[at] = high > low ? static_cast<int>(std::floor((v - low) * 255 / (high - low) + 0.5)) : 0;
        result[3] = 255;
    }
    return result;
}

std::vector<Kind> Kinds() {
    RasterSpec grey;
    RasterSpec colour{.bands = 3};
    RasterSpec withAlpha{.bands = 4, .alpha = true};
    withAlpha.cell = [](int x, int y, int band) {
        return band == 3 ? (x * 40 + y) % 256 : (x * y + band * 60) % 256;
    };
    RasterSpec indexed{.nodata = 3, .palette = SomePalette()};
    indexed.cell = [](int x, int y, int) { return (x + 3 * y) % 40; };
    RasterSpec real{.type = GDT_Float32, .nodata = -9999};
    real.cell = [](int x, int y, int) { return x == 2 && y % 3 == 1 ? -9999 : (x - 0.75 * y) / 8; };
    RasterSpec holes{.bands = 3, .type = GDT_Float64};
    holes.cell = [](int x, int y, int band) {
        if (x == y && (band == 0 || x % 2 == 0)) return std::numeric_limits<double>::quiet_NaN();
        return std::sin(x + 2.0 * y + band);
    };
    RasterSpec whole{.type = GDT_Int16};
    whole.cell = [](int x, int y, int) { return -300 + 11 * x + 5 * y; };
    RasterSpec constant{.type = GDT_Float32, .cell = [](int, int, int) { return 4.5; }};
    return {{"Grey", grey, AsIs},        {"RGB", colour, AsIs},
            {"RGBA", withAlpha, AsIs},   {"Palette", indexed, ByPalette},
            {"Float", real, Stretched},  {"FloatHoles", holes, Stretched},
            {"Int16", whole, Stretched}, {"Constant", constant, Stretched}};
}

class GdalMosaicTest : public GdalTest,
                       public testing::WithParamInterface<std::tuple<std::size_t, int, std::string>> {};

TEST_P(GdalMosaicTest, TilesTogetherShowTheSource) {
    const auto [index, size, format] = GetParam();
    Kind kind = Kinds()[index];
    kind.spec.width = size;
    kind.spec.height = 23;  // not a multiple of the tile's size either
    const auto layer = gdal::OpenRasterLayer(Make("source.tif", kind.spec));
    std::vector<std::pair<int, int>> corners;
    for (int top = 0; top < kind.spec.height; top += kTile) {
        for (int left = 0; left < size; left += kTile) corners.emplace_back(left, top);
    }
    // Row by row as a run does, then in any order: what is read ahead must not matter.
    std::vector<std::pair<int, int>> shuffled = corners;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(static_cast<unsigned>(size)));
    corners.insert(corners.end(), shuffled.begin(), shuffled.end());
    for (const auto& [left, top] : corners) {
        const int columns = std::min(kTile, size - left);
        const int rows = std::min(kTile, kind.spec.height - top);
        const std::string name = "tile." + format;
        ASSERT_EQ(Export(*layer, name, left, top, columns, rows), out_ / name) << reason_;
        const Picture tile = Load(out_ / name);
        ASSERT_EQ(std::pair(tile.width, tile.height), std::pair(columns, rows));
        for (int y = 0; y < rows; ++y) {
            for (int x = 0; x < columns; ++x) {
                Shown expected = kind.shown(kind.spec, left + x, top + y);
                Shown found = tile.At(x, y);
                if (format == "bmp") expected[3] = found[3] = 255;  // knows no transparency
                ASSERT_EQ(found, expected) << "cell " << left + x << ", " << top + y;
            }
        }
        EXPECT_EQ(out_.Names(), std::vector<std::string>{name}) << "side files";
    }
}

std::string NameOf(const testing::TestParamInfo<GdalMosaicTest::ParamType>& info) {
    return std::string(Kinds()[std::get<0>(info.param)].name) + std::to_string(std::get<1>(info.param)) +
           std::get<2>(info.param);
}

INSTANTIATE_TEST_SUITE_P(Lossless, GdalMosaicTest,
                         testing::Combine(testing::Range<std::size_t>(0, 8),
                                          testing::Values(1, 6, 7, 8, 13, 29),
                                          testing::Values<std::string>("png", "bmp")),
                         NameOf);

class GdalTileTest : public GdalTest {};

TEST_F(GdalTileTest, TiffTilesTogetherHoldEveryCellOfEveryBand) {
    for (Kind& kind : Kinds()) {
        RasterSpec& spec = kind.spec;
        spec.width = 15;
        spec.height = 13;
        const auto layer = gdal::OpenRasterLayer(Make("source.tif", spec));
        for (int corner = 0; corner < 6; ++corner) {
            const int left = corner % 3 * kTile;
            const int top = corner / 3 * kTile;
            const int columns = std::min(kTile, spec.width - left);
            const int rows = std::min(kTile, spec.height - top);
            const std::string path = Export(*layer, "t.tif", left, top, columns, rows);
            GDALDatasetUniquePtr tile(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
            ASSERT_NE(tile, nullptr) << kind.name << ": " << reason_;
            ASSERT_EQ(tile->GetRasterCount(), spec.bands);
            for (int band = 0; band < spec.bands; ++band) {
                ASSERT_EQ(tile->GetRasterBand(band + 1)->GetRasterDataType(), spec.type);
                std::vector<double> expected;
                for (int y = top; y < top + rows; ++y) {
                    for (int x = left; x < left + columns; ++x) expected.push_back(spec.cell(x, y, band));
                }
                EXPECT_THAT(detail::Cells(*tile->GetRasterBand(band + 1)),
                            testing::Pointwise(testing::NanSensitiveDoubleEq(), expected))
                    << kind.name << " at " << left << ", " << top;
            }
        }
    }
}

TEST_F(GdalTileTest, TiffKeepsTypeBandsNodataAndPlace) {
    RasterSpec spec{.width = 20, .height = 15, .bands = 2, .type = GDT_Float32, .nodata = -1};
    spec.cell = [](int x, int y, int band) { return x == 6 ? -1 : x * 0.5 + y * 100 + band * 0.25; };
    const auto layer = gdal::OpenRasterLayer(Make("source.tif", spec));
    const std::string file = Export(*layer, "Tile.TIF", 5, 4, 8, 9);
    ASSERT_EQ(file, out_ / "Tile.TIF") << reason_;
    const Picture tile = Load(file);
    EXPECT_EQ(tile.bands, 2);
    EXPECT_EQ(tile.type, GDT_Float32);
    EXPECT_EQ(tile.transform, (std::array<double, 6>{1010, 2, 0, 4988, 0, -3}));
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(tile.cells[static_cast<std::size_t>(y * 8 + x)], spec.cell(x + 5, y + 4, 0));
            EXPECT_EQ(tile.At(x, y)[3], x == 1 ? 0 : 255);
        }
    }
    EXPECT_EQ(out_.Names(), std::vector<std::string>{"Tile.TIF"});
}

TEST_F(GdalTileTest, LayoutsOfTheSourceFileDoNotMatter) {
    RasterSpec spec{.width = 300, .height = 70, .bands = 3};
    // Blocks of zeros are left out of a sparse file.
    spec.cell = [](int x, int y, int band) { return x < 150 ? 0 : (x * 5 + y * 3 + band * 70) % 256; };
    const std::vector<std::vector<const char*>> layouts = {
        {"INTERLEAVE=BAND"},
        {"INTERLEAVE=BAND", "TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=16", "SPARSE_OK=TRUE"},
        {"TILED=YES", "BLOCKXSIZE=48", "BLOCKYSIZE=64", "SPARSE_OK=TRUE"},
        {"COMPRESS=LZW", "BLOCKYSIZE=9"},
        {"ENDIANNESS=BIG"}};
    for (const auto& options : layouts) {
        spec.options = options;
        const auto layer = gdal::OpenRasterLayer(Make("source.tif", spec));
        for (const auto& [left, width] : {std::pair(0, 110), {110, 110}, {220, 80}}) {
            const Picture tile = Load(Export(*layer, "t.png", left, 11, width, 50));
            for (int y = 0; y < 50; ++y) {
                for (int x = 0; x < width; ++x)
                    ASSERT_EQ(tile.At(x, y), AsIs(spec, left + x, 11 + y)) << options[0];
            }
        }
    }
}

TEST_F(GdalTileTest, SixteenBitsStayInPngAndAreStretchedElsewhere) {
    RasterSpec spec{.width = 9, .height = 5, .bands = 3, .type = GDT_UInt16, .nodata = 7};
    spec.cell = [](int x, int y, int band) { return x == 3 ? 7 : 1000 + 300 * x + 7001 * y + band * 1234; };
    const auto layer = gdal::OpenRasterLayer(Make("source.tif", spec));
    const Picture png = Load(Export(*layer, "t.png", 0, 0, 9, 5));
    const Picture bmp = Load(Export(*layer, "t.bmp", 0, 0, 9, 5));
    ASSERT_EQ(png.type, GDT_UInt16);
    ASSERT_EQ(bmp.type, GDT_Byte);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 9; ++x) {
            EXPECT_EQ(png.At(x, y)[1], spec.cell(x, y, 1));
            EXPECT_EQ(png.At(x, y)[3] == 0, x == 3) << "nodata is transparent";
            Shown expected = Stretched(spec, x, y);
            expected[3] = 255;
            EXPECT_EQ(bmp.At(x, y), expected);
        }
    }
}

TEST_F(GdalTileTest, AnOtherFormatBecomesATiffOfEightBits) {
    RasterSpec spec{.type = GDT_Int32};
    spec.cell = [](int x, int y, int) { return x * 1000 + y; };
    const auto layer = gdal::OpenRasterLayer(Make("source.tif", spec));
    for (const char* name : {"a.webp", "a.", "a"}) {
        ASSERT_EQ(Export(*layer, name, 0, 0, 10, 10), out_ / "a.tif") << reason_;
        const Picture tile = Load(out_ / "a.tif");
        EXPECT_EQ(tile.type, GDT_Byte);
        EXPECT_EQ(tile.At(9, 4), Stretched(spec, 9, 4));
        std::filesystem::remove(out_ / "a.tif");
        EXPECT_TRUE(out_.Names().empty());
    }
}

TEST_F(GdalTileTest, SeparatorsOfBothKindsComeBackAsGiven) {
    const auto layer = gdal::OpenRasterLayer(Make("source.tif", {}));
    const std::string target = out_.Path() + "\\a.b\\tile";
    std::filesystem::create_directory(out_ / "a.b");
    const auto all = layer->Extent();
    EXPECT_EQ(io_->ExportRasterWindow(*layer, target + ".png", 0, *all, 10, 10, reason_), target + ".png");
    EXPECT_EQ(io_->ExportRasterWindow(*layer, target, 0, *all, 10, 10, reason_), target + ".tif");
    EXPECT_TRUE(std::filesystem::exists(out_ / "a.b/tile.png"));
    EXPECT_TRUE(std::filesystem::exists(out_ / "a.b/tile.tif"));
}

TEST_F(GdalTileTest, JpegShowsThePictureAndFollowsTheQuality) {
    RasterSpec spec{.width = 64, .height = 64, .bands = 4, .alpha = true};
    spec.cell = [](int x, int y, int band) { return band == 3 ? 0 : 60 + band * 40 + x + y / 2; };
    const auto layer = gdal::OpenRasterLayer(Make("source.tif", spec));
    const auto size = [&](Integer quality) {
        return std::filesystem::file_size(Export(*layer, "q.jpg", 0, 0, 64, 64, quality));
    };
    EXPECT_LT(size(10), size(95));
    EXPECT_EQ(size(0), size(75));
    const Picture tile = Load(Export(*layer, "t.JPEG", 0, 0, 64, 64, 95));
    ASSERT_EQ(tile.bands, 3);
    for (int i = 0; i < 64; ++i) {
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_NEAR(tile.At(i, 63 - i)[c], spec.cell(i, 63 - i, static_cast<int>(c)), 4);
        }
    }
}

TEST_F(GdalTileTest, MasksAndTransparentPalettesAreShownAsAlpha) {
    RasterSpec spec{.width = 8, .height = 4, .palette = SomePalette()};
    spec.cell = [](int x, int, int) { return x; };
    const auto layer = gdal::OpenRasterLayer(Make("palette.tif", spec));
    const Picture jpeg = Load(Export(*layer, "t.jpg", 0, 0, 8, 4, 100));
    EXPECT_EQ(jpeg.bands, 3) << "expanded";
    EXPECT_NEAR(jpeg.At(5, 1)[1], 250, 8);

    Make("masked.tif", {.width = 8, .height = 4});
    {
        const gdal::Option inside("GDAL_TIFF_INTERNAL_MASK", "YES");
        GDALDatasetUniquePtr file(GDALDataset::Open((folder_ / "masked.tif").c_str(), GDAL_OF_UPDATE));
        ASSERT_EQ(file->CreateMaskBand(GMF_PER_DATASET), CE_None);
        std::vector<unsigned char> mask(32, 255);
        mask[8 + 3] = 0;
        ASSERT_EQ(file->GetRasterBand(1)->GetMaskBand()->RasterIO(GF_Write, 0, 0, 8, 4, mask.data(), 8, 4,
                                                                  GDT_Byte, 0, 0, nullptr),
                  CE_None);
    }
    const auto masked = gdal::OpenRasterLayer(folder_ / "masked.tif");
    for (const char* name : {"m.png", "m.gif", "m.tif"}) {
        const Picture tile = Load(Export(*masked, name, 0, 0, 8, 4));
        EXPECT_EQ(tile.At(3, 1)[3], 0) << name;
        EXPECT_EQ(tile.At(4, 1), AsIs({}, 4, 1)) << name;
    }
}

TEST_F(GdalTileTest, GifTilesShareOnePalette) {
    // 64 colours, each a bin of its own, and one row without data.
    RasterSpec few{.width = 16, .height = 16, .bands = 3, .nodata = 1};
    few.cell = [](int x, int y, int band) {
        return y == 5 ? 1 : band == 0 ? (x % 4) * 60 + 2 : band == 1 ? (y % 4) * 60 + 3 : (x / 4) * 50;
    };
    const auto layer = gdal::OpenRasterLayer(Make("few.tif", few));
    for (int left : {0, 8}) {
        const Picture tile = Load(Export(*layer, "t.gif", left, 0, 8, 16));
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 8; ++x) {
                if (y == 5) {
                    EXPECT_EQ(tile.At(x, y)[3], 0);
                } else {
                    EXPECT_EQ(tile.At(x, y), AsIs(few, left + x, y)) << x << ", " << y;
                }
            }
        }
    }
    RasterSpec many{.width = 64, .height = 64, .bands = 3};
    many.cell = [](int x, int y, int band) { return band == 0 ? x * 4 : band == 1 ? y * 4 : (x + y) * 2; };
    const auto smooth = gdal::OpenRasterLayer(Make("many.tif", many));
    const Picture all = Load(Export(*smooth, "all.gif", 0, 0, 64, 64));
    const Picture part = Load(Export(*smooth, "part.gif", 40, 24, 16, 16));
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            EXPECT_EQ(part.At(x, y), all.At(x + 40, y + 24));
            for (std::size_t c = 0; c < 3; ++c) {
                EXPECT_NEAR(part.At(x, y)[c], many.cell(x + 40, y + 24, static_cast<int>(c)), 24);
            }
        }
    }
}

}  // namespace
}  // namespace orvo
