// Envelopes that do not name whole cells, and windows cut from image files.
#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

class GdalWindowTest : public GdalTest {
  protected:
    /// A plane, which bilinear resampling keeps as it is away from the border.
    std::shared_ptr<gdal::RasterLayer> Plane() {
        RasterSpec spec{.width = 40, .height = 30};
        spec.cell = [](int x, int y, int) { return 4 * x + 2 * y; };
        return MakeLayer(spec);
    }
    Picture ExportBox(gdal::RasterLayer& layer, const memory::Envelope& box, int columns, int rows) {
        const std::string file =
            io_->ExportRasterWindow(layer, out_ / "t.png", 0, box, columns, rows, reason_);
        EXPECT_EQ(file, out_ / "t.png") << reason_;
        return Load(file);
    }
};

TEST_F(GdalWindowTest, WholeCellsAreCopiedAlsoWhereArithmeticIsOffByLittle) {
    const auto layer = Plane();
    const Picture tile = ExportBox(*layer, CellBox(*layer, 3 + 9e-7, 5 - 9e-7, 13 - 9e-7, 12 + 9e-7), 10, 7);
    ExpectPixels(tile, [](int x, int y) {
        const int cell = 4 * (x + 3) + 2 * (y + 5);
        return Shown{cell, cell, cell, 255};
    });
}

TEST_F(GdalWindowTest, OtherEnvelopesAreResampledWhereTheyLie) {
    const auto layer = Plane();
    struct Case {
        double left, top, right, bottom;
        int columns, rows;
    };
    for (const Case& c : {Case{10.5, 10.5, 20.5, 20.5, 10, 10},    // half a cell off
                          Case{10.25, 10.25, 14.75, 14.75, 5, 5},  // touches as many cells as it has pixels
                          Case{10, 10, 20, 15, 20, 10},            // twice as fine
                          Case{8, 6, 32, 24, 12, 9},               // half as fine
                          Case{10, 10, 17, 17, 10, 10}}) {  // the size of the tile, a part of its cells
        const Picture tile =
            ExportBox(*layer, CellBox(*layer, c.left, c.top, c.right, c.bottom), c.columns, c.rows);
        for (int y = 0; y < c.rows; ++y) {
            for (int x = 0; x < c.columns; ++x) {
                const double column = c.left + (x + 0.5) * (c.right - c.left) / c.columns - 0.5;
                const double row = c.top + (y + 0.5) * (c.bottom - c.top) / c.rows - 0.5;
                ASSERT_NEAR(tile.At(x, y)[0], 4 * column + 2 * row, 0.76)
                    << x << ", " << y << " of the window at " << c.left << ", " << c.top;
            }
        }
    }
}

TEST_F(GdalWindowTest, PalettesTakeTheNearestCell) {
    RasterSpec spec{.width = 8, .height = 8, .palette = {{0, 0, 0, 255}, {255, 0, 0, 255}, {0, 0, 255, 255}}};
    spec.cell = [](int x, int, int) { return x < 4 ? 1 : 2; };
    const auto layer = MakeLayer(spec);
    ExpectPixels(ExportBox(*layer, CellBox(*layer, 0, 0, 8, 8), 24, 24), [](int x, int) {
        return x < 12 ? Shown{255, 0, 0, 255} : Shown{0, 0, 255, 255};
    });
}

TEST_F(GdalWindowTest, WhatReachesPastTheRasterIsCutOffAndNothingToShowIsRefused) {
    const auto layer = Plane();
    const Picture tile = ExportBox(*layer, CellBox(*layer, -5, -4, 5, 6), 5, 6);
    EXPECT_EQ(tile.At(0, 0)[0], 0);
    EXPECT_EQ(tile.At(4, 5)[0], 4 * 4 + 2 * 5);
    std::filesystem::remove(out_ / "t.png");
    const auto all = CellBox(*layer, 0, 0, 40, 30);
    const std::tuple<memory::Envelope, Long, Long> cases[] = {
        {CellBox(*layer, 50, 0, 60, 10), 10, 10},
        {CellBox(*layer, 40, 0, 50, 10), 10, 10},  // only touches
        {memory::Envelope(), 10, 10},
        {CellBox(*layer, 5, 5, 5, 10), 10, 10},
        {all, 0, 10},
        {all, 10, -3}};
    for (const auto& [box, columns, rows] : cases) {
        reason_.clear();
        EXPECT_EQ(io_->ExportRasterWindow(*layer, out_ / "t.png", 0, box, columns, rows, reason_), "");
        EXPECT_NE(reason_, "");
    }
    ExpectRefused(*layer, "missing/t.png", 0, 0, 5, 5);
    EXPECT_TRUE(out_.Names().empty());
}

TEST_F(GdalWindowTest, NodataDoesNotBleedIntoItsNeighbours) {
    RasterSpec spec{.width = 20, .height = 20, .type = GDT_Float32, .nodata = -9999};
    spec.cell = [](int x, int y, int) { return x < 10 ? -9999.0 : 100 + y % 2; };
    const auto layer = MakeLayer(spec);
    const Picture tile = ExportBox(*layer, CellBox(*layer, 0, 0.5, 20, 19.5), 40, 38);
    EXPECT_EQ(tile.At(2, 20)[3], 0);
    EXPECT_EQ(tile.At(38, 20)[3], 255);
    for (int x = 0; x < 40; ++x) {
        // A quarter and three quarters of the way from 100 to 101, whatever lies to the left.
        if (tile.At(x, 20)[3] == 0) continue;
        EXPECT_NEAR(tile.At(x, 20)[0], 64, 1) << x;
        EXPECT_NEAR(tile.At(x, 21)[0], 191, 1) << x;
    }
}

TEST_F(GdalWindowTest, CutsAreNativeTiffsCutBackToTheRaster) {
    RasterSpec spec{.width = 30, .height = 20, .bands = 4, .type = GDT_UInt16, .alpha = true};
    spec.cell = [](int x, int y, int band) { return x * 100 + y * 3 + band * 10000; };
    const std::string source = Make("source.tif", spec);
    PixelWindow window{25, -4, 10, 14};
    ASSERT_TRUE(io_->CutWindow(source, window, out_ / "cut.tif", reason_)) << reason_;
    EXPECT_EQ(window, (PixelWindow{25, 0, 5, 10}));
    const Picture cut = Load(out_ / "cut.tif");
    EXPECT_EQ(std::pair(cut.width, cut.height), std::pair(5, 10));
    EXPECT_EQ(cut.type, GDT_UInt16);
    EXPECT_EQ(cut.bands, 4);
    EXPECT_FALSE(cut.placed);
    EXPECT_EQ(cut.At(2, 7)[2], spec.cell(27, 7, 2));

    // The source stays open: it may go, the run goes on.
    std::filesystem::remove(source);
    window = {0, 0, 3, 3};
    EXPECT_TRUE(io_->CutWindow(source, window, out_ / "cut2.tif", reason_)) << reason_;
    window = {30, 0, 5, 5};
    EXPECT_FALSE(io_->CutWindow(source, window, out_ / "cut3.tif", reason_));
    EXPECT_NE(reason_, "");
    window = {2147483647, 0, 2147483647, 5};
    EXPECT_FALSE(io_->CutWindow(source, window, out_ / "cut3.tif", reason_));
    EXPECT_FALSE(std::filesystem::exists(out_ / "cut3.tif"));
}

TEST_F(GdalWindowTest, CutsKeepPaletteNodataAndMask) {
    RasterSpec spec{.nodata = 2, .palette = {{9, 8, 7, 255}, {200, 100, 50, 255}, {1, 2, 3, 255}}};
    spec.cell = [](int x, int, int) { return x % 3; };
    PixelWindow window{1, 1, 5, 5};
    ASSERT_TRUE(io_->CutWindow(Make("p.tif", spec), window, out_ / "p.tif", reason_)) << reason_;
    const Picture cut = Load(out_ / "p.tif");
    EXPECT_EQ(cut.At(0, 0), (Shown{200, 100, 50, 255}));
    EXPECT_EQ(cut.At(1, 0), (Shown{1, 2, 3, 0}));
}

}  // namespace
}  // namespace orvo
