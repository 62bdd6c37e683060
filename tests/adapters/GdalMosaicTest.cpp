// Tiles put together must show the source, pixel for pixel.
#include <cmath>
#include <random>

#include "platform/gdal/ScopedOption.h"
#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

constexpr int kTile = 7;

struct Kind {
    const char* name;
    RasterSpec spec;
    /// What a format of 8 bits with transparency must show of a cell; by column and row.
    Shown (*shown)(const RasterSpec&, int, int);
};

int Colours(const RasterSpec& spec) {
    return spec.bands - (spec.alpha ? 1 : 0);
}

Shown AsIs(const RasterSpec& spec, int x, int y) {
    Shown result{0, 0, 0, spec.nodata ? 0 : 255};
    for (int c = 0; c < 3; ++c) {
        const double v = spec.cell(x, y, Colours(spec) >= 3 ? c : 0);
        result[static_cast<std::size_t>(c)] = static_cast<int>(v);
        if (v != spec.nodata) result[3] = 255;
    }
    if (spec.alpha)
        result[3] = static_cast<int>(spec.cell(x, y, spec.bands - 1)) / (spec.type == GDT_UInt16 ? 257 : 1);
    return result;
}

std::vector<GDALColorEntry> SomePalette() {
    std::vector<GDALColorEntry> palette;
    for (int i = 0; i < 40; ++i)
        palette.push_back(
            {static_cast<short>(i * 6), static_cast<short>(255 - i), static_cast<short>(i * i % 256), 255});
    return palette;
}

Shown ByPalette(const RasterSpec& spec, int x, int y) {
    const double cell = spec.cell(x, y, 0);
    const auto& c = spec.palette[static_cast<std::size_t>(cell)];
    return {c.c1, c.c2, c.c3, cell == spec.nodata ? 0 : 255};
}

/// Linear from the least to the greatest valid cell, half up; hidden where there is no data.
Shown Stretched(const RasterSpec& spec, int x, int y) {
    const auto isHole = [&](double v) { return !std::isfinite(v) || v == spec.nodata; };
    std::vector<double> valid;
    for (int i = 0; i < spec.width * spec.height * Colours(spec); ++i) {
        const double v =
            spec.cell(i % spec.width, i / spec.width % spec.height, i / spec.width / spec.height);
        if (!isHole(v)) valid.push_back(v);
    }
    const auto [low, high] = std::ranges::minmax(valid);
    Shown result{0, 0, 0, 0};
    for (int c = 0; c < 3; ++c) {
        const double v = spec.cell(x, y, Colours(spec) == 3 ? c : 0);
        if (isHole(v)) continue;
        result.at(static_cast<std::size_t>(c)) =
            high > low ? static_cast<int>(std::floor((v - low) * 255 / (high - low) + 0.5)) : 0;
        result[3] = 255;
    }
    return result;
}

std::vector<Kind> Kinds() {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    const CellFunction colours = [](int x, int y, int band) {
        return band == 3 ? (x * 40 + y) % 256 : (x * y + band * 60) % 256;
    };
    const CellFunction holes = [=](int x, int y, int band) {
        if (x == y && (band == 0 || x % 2 == 0)) return x == 4 ? endless : none;
        return std::sin(x + 2.0 * y + band);
    };
    const CellFunction deep = [](int x, int y, int band) {
        return x == 3 ? 7 : (1000 + 300 * x + 7001 * y + band * 1234) % 65536;
    };
    const CellFunction deepAlpha = [=](int x, int y, int band) {
        return band % 2 == 1 ? ((x * 40 + y) % 255 + 1) * 257 : deep(x, y, band);
    };
    const CellFunction real = [](int x, int y, int) {
        return x == 2 && y % 3 == 1 ? -9999 : (x - 0.75 * y) / 8;
    };
    const CellFunction index = [](int x, int y, int) { return (x + 3 * y) % 40; };
    const CellFunction whole = [](int x, int y, int) { return -300 + 11 * x + 5 * y; };
    const CellFunction same = [](int, int, int) { return 4.5; };
    return {{"Grey", {}, AsIs},
            {"GreyAlpha", {.bands = 2, .alpha = true}, AsIs},
            {"RGB", {.bands = 3}, AsIs},
            {"RGBA", {.bands = 4, .cell = colours, .alpha = true}, AsIs},
            {"Palette", {.cell = index, .nodata = 3, .palette = SomePalette()}, ByPalette},
            {"Float", {.type = GDT_Float32, .cell = real, .nodata = -9999}, Stretched},
            {"FloatHoles", {.bands = 3, .type = GDT_Float64, .cell = holes}, Stretched},
            {"Int16", {.type = GDT_Int16, .cell = whole}, Stretched},
            {"Grey16", {.type = GDT_UInt16, .cell = deep}, Stretched},
            {"RGB16", {.bands = 3, .type = GDT_UInt16, .cell = deep, .nodata = 7}, Stretched},
            {"GreyAlpha16", {.bands = 2, .type = GDT_UInt16, .cell = deepAlpha, .alpha = true}, Stretched},
            {"RGBA16", {.bands = 4, .type = GDT_UInt16, .cell = deepAlpha, .alpha = true}, Stretched},
            {"Constant", {.type = GDT_Float32, .cell = same}, Stretched}};
}

/// A TIFF tile holds every cell of every band, with type, nodata and place.
void ExpectCells(GDALDataset& tile, const RasterSpec& spec, int left, int top) {
    std::array<double, 6> transform{};
    ASSERT_EQ(tile.GetGeoTransform(transform.data()), CE_None);
    EXPECT_THAT(transform, testing::ElementsAre(1000 + 2 * left, 2, 0, 5000 - 3 * top, 0, -3));
    ASSERT_EQ(tile.GetRasterCount(), spec.bands);
    for (int b = 0; b < spec.bands; ++b) {
        GDALRasterBand& band = *tile.GetRasterBand(b + 1);
        EXPECT_EQ(band.GetRasterDataType(), spec.type);
        int hasNodata = 0;
        EXPECT_EQ(band.GetNoDataValue(&hasNodata), spec.nodata.value_or(band.GetNoDataValue()));
        EXPECT_EQ(hasNodata != 0, spec.nodata.has_value());
        std::vector<double> cells;
        for (int i = 0; i < band.GetXSize() * band.GetYSize(); ++i)
            cells.push_back(spec.cell(left + i % band.GetXSize(), top + i / band.GetXSize(), b));
        EXPECT_THAT(Cells(band), testing::Pointwise(testing::NanSensitiveDoubleEq(), cells));
    }
}

struct GdalTileTest : GdalTest {
    void ExpectMosaic(Kind kind, int size, const std::string& format);
};

void GdalTileTest::ExpectMosaic(Kind kind, int size, const std::string& format) {
    kind.spec.width = size;
    kind.spec.height = 23;  // not a multiple of the tile's size either
    const auto layer = MakeLayer(kind.spec);
    const auto shown = kind.spec.type == GDT_UInt16 && format == "png" ? AsIs : kind.shown;
    std::vector<std::pair<int, int>> corners;
    for (int top = 0; top < kind.spec.height; top += kTile)
        for (int left = 0; left < size; left += kTile) corners.emplace_back(left, top);
    // Row by row as a run does, then in any order: what is read ahead must not matter.
    auto shuffled = corners;
    std::ranges::shuffle(shuffled, std::mt19937(static_cast<unsigned>(size)));
    corners.insert(corners.end(), shuffled.begin(), shuffled.end());
    for (const auto& [left, top] : corners) {
        const int columns = std::min(kTile, size - left);
        const int rows = std::min(kTile, kind.spec.height - top);
        const std::string name = "tile." + format;
        ASSERT_EQ(Export(*layer, name, left, top, columns, rows), out_ / name) << reason_;
        const Picture tile = Load(out_ / name);
        ASSERT_EQ(std::pair(tile.width, tile.height), std::pair(columns, rows));
        if (format == "TIF") {
            ExpectCells(*OpenFile(out_ / name), kind.spec, left, top);
        } else {
            ExpectPixels(tile, [&, left = left, top = top](int x, int y) {
                Shown expected = shown(kind.spec, left + x, top + y);
                if (format == "bmp") expected[3] = 255;  // knows no transparency
                return expected;
            });
        }
        ASSERT_FALSE(HasFailure()) << "tile at " << left << ", " << top;
        EXPECT_EQ(out_.Names(), std::vector<std::string>{name}) << "side files";
        std::filesystem::remove(out_ / name);
    }
}

TEST_F(GdalTileTest, TilesTogetherShowTheSource) {
    for (const Kind& kind : Kinds()) {
        for (const int size : {1, 6, 7, 8, 13, 29}) {
            for (const char* format : {"png", "bmp", "TIF"}) {
                SCOPED_TRACE(kind.name + std::to_string(size) + format);
                ASSERT_NO_FATAL_FAILURE(ExpectMosaic(kind, size, format));
            }
        }
    }
}

TEST_F(GdalTileTest, LayoutsOfTheSourceFileDoNotMatter) {
    RasterSpec spec{.width = 300, .height = 70, .bands = 3};
    // Blocks of zeros are left out of a sparse file.
    spec.cell = [](int x, int y, int band) {
        return x < 150 ? 0 : (x * x * 31 + y * x * 17 + band * 70) % 256;
    };
    for (const std::vector<const char*>& options :
         {std::vector{"INTERLEAVE=BAND"},
          {"INTERLEAVE=BAND", "TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=16", "SPARSE_OK=TRUE"},
          {"TILED=YES", "BLOCKXSIZE=48", "BLOCKYSIZE=64", "SPARSE_OK=TRUE"},
          {"COMPRESS=LZW", "BLOCKYSIZE=9"},
          {"ENDIANNESS=BIG"}}) {
        spec.options = options;
        const auto layer = MakeLayer(spec);
        for (const int left : {0, 110, 220})
            ExpectPixels(Load(Export(*layer, "t.png", left, 11, left < 220 ? 110 : 80, 50)),
                         [&](int x, int y) { return AsIs(spec, left + x, 11 + y); });
    }
}

TEST_F(GdalTileTest, PngFiltersSmoothImagery) {
    RasterSpec spec{.width = 256, .height = 256, .bands = 3};
    spec.cell = [](int x, int y, int band) {
        return (x * 3 + y * 5 + (x * x * 31 + y * x * 17 + band) % 3) % 256;
    };
    const auto size = [&] {
        return std::filesystem::file_size(Export(*MakeLayer(spec), "t.png", 0, 0, 256, 256));
    };
    // A noise of 3 levels carries 1.6 bits per byte; unfiltered, the ramp would cost nearly 8.
    EXPECT_LT(size(), 256 * 256 * 3 / 2);
    spec.cell = [](int x, int, int) { return x < 5 ? 40 : 200; };
    EXPECT_LT(size(), 256 * 256 * 3 / 200);
}

TEST_F(GdalTileTest, AnOtherFormatBecomesATiffOfEightBitsAndSeparatorsComeBackAsGiven) {
    RasterSpec spec{.type = GDT_Int32};
    spec.cell = [](int x, int y, int) { return x * 1000 + y; };
    const auto layer = MakeLayer(spec);
    const std::string target = out_.Path() + "\\a.b\\tile";
    for (const char* extension : {".webp", ".", ""}) {
        std::filesystem::create_directory(out_ / "a.b");
        EXPECT_EQ(io_->ExportRasterWindow(*layer, target + extension, 0, *layer->Extent(), 10, 10, reason_),
                  target + ".tif");
        const Picture tile = Load(out_ / "a.b/tile.tif");
        EXPECT_EQ(tile.type, GDT_Byte);
        ExpectPixels(tile, [&](int x, int y) { return Stretched(spec, x, y); });
        EXPECT_EQ(std::filesystem::remove_all(out_ / "a.b"), 2U) << "the tile alone, and its folder";
    }
}

TEST_F(GdalTileTest, JpegShowsThePictureAndFollowsTheQuality) {
    RasterSpec spec{.width = 64, .height = 64, .bands = 4, .alpha = true};
    spec.cell = [](int x, int y, int band) { return band == 3 ? 0 : 60 + band * 40 + x + y / 2; };
    const auto layer = MakeLayer(spec);
    const auto size = [&](Integer quality) {
        return std::filesystem::file_size(Export(*layer, "q.jpg", 0, 0, 64, 64, quality));
    };
    EXPECT_LT(size(10), size(95));
    EXPECT_EQ(size(0), size(75));
    const Picture tile = Load(Export(*layer, "t.JPEG", 0, 0, 64, 64, 95));
    ASSERT_EQ(tile.bands, 3);
    for (int i = 0; i < 64; ++i) EXPECT_NEAR(tile.At(i, 63 - i)[1], spec.cell(i, 63 - i, 1), 4);
}

TEST_F(GdalTileTest, MasksAndTransparentPalettesAreShownAsAlpha) {
    RasterSpec spec{.width = 8, .height = 4, .palette = SomePalette(), .driver = "PNG"};
    spec.palette[5].c4 = 99;
    spec.cell = [](int x, int, int) { return x; };
    const auto layer = MakeLayer(spec);
    EXPECT_EQ(Load(Export(*layer, "t.png", 0, 0, 8, 4)).At(5, 1), (Shown{30, 250, 25, 99}));
    const Picture jpeg = Load(Export(*layer, "t.jpg", 0, 0, 8, 4, 100));
    EXPECT_EQ(jpeg.bands, 3) << "expanded";
    EXPECT_NEAR(jpeg.At(4, 1)[1], 251, 8);

    Make("masked.tif", {.width = 8, .height = 4});
    {
        const gdal::ScopedOption inside("GDAL_TIFF_INTERNAL_MASK", "YES");
        const auto file = OpenFile(folder_ / "masked.tif", GDAL_OF_UPDATE);
        ASSERT_EQ(file->CreateMaskBand(GMF_PER_DATASET), CE_None);
        std::vector<double> mask(32, 255);
        mask[8 + 3] = 0;
        Transfer(GF_Write, *file->GetRasterBand(1)->GetMaskBand(), mask);
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
    const auto layer = MakeLayer(few);
    for (const int left : {0, 8}) {
        const Picture tile = Load(Export(*layer, "t.gif", left, 0, 8, 16));
        ExpectPixels(tile, [&, left = left](int x, int y) {
            Shown expected = y == 5 ? tile.At(x, y) : AsIs(few, left + x, y);
            if (y == 5) expected[3] = 0;
            return expected;
        });
    }
    RasterSpec many{.width = 64, .height = 64, .bands = 3};
    many.cell = [](int x, int y, int band) { return band == 0 ? x * 4 : band == 1 ? y * 4 : (x + y) * 2; };
    const auto smooth = gdal::OpenRasterLayer(Make("many.tif", many));
    const Picture all = Load(Export(*smooth, "all.gif", 0, 0, 64, 64));
    const Picture part = Load(Export(*smooth, "part.gif", 40, 24, 16, 16));
    ExpectPixels(part, [&](int x, int y) { return all.At(x + 40, y + 24); });
    for (int i = 0; i < 16 * 16; ++i)
        EXPECT_NEAR(part.At(i % 16, i / 16)[1], many.cell(i % 16 + 40, i / 16 + 24, 1), 24);
}

}  // namespace
}  // namespace orvo
