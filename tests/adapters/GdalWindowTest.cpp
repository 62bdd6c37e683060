// Envelopes that do not name whole cells, and windows cut from image files.
#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

struct GdalWindowTest : GdalTest {
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

TEST_F(GdalWindowTest, WholeCellsAreCopiedAndOtherEnvelopesResampledWhereTheyLie) {
    const auto layer = Plane();
    // The arithmetic is off by little.
    const Picture whole = ExportBox(*layer, CellBox(*layer, 3 + 9e-7, 5 - 9e-7, 13 - 9e-7, 12 + 9e-7), 10, 7);
    for (int i = 0; i < 70; ++i) EXPECT_EQ(whole.At(i % 10, i / 10)[0], 4 * (i % 10 + 3) + 2 * (i / 10 + 5));
    for (const auto& [left, top, right, bottom, columns, rows] :
         {std::tuple(10.5, 10.5, 20.5, 20.5, 10, 10),  // half a cell off
          {10.25, 10.25, 14.75, 14.75, 5, 5},          // touches as many cells as it has pixels
          {10., 10., 20., 15., 20, 10},                // twice as fine
          {8., 6., 32., 24., 12, 9},                   // half as fine
          {10., 10., 17., 17., 10, 10}}) {             // the size of the tile, a part of its cells
        const Picture tile = ExportBox(*layer, CellBox(*layer, left, top, right, bottom), columns, rows);
        for (int i = 0; i < columns * rows; ++i) {
            const double column = left + (i % columns + 0.5) * (right - left) / columns - 0.5;
            const double row = top + (i / columns + 0.5) * (bottom - top) / rows - 0.5;
            ASSERT_NEAR(tile.At(i % columns, i / columns)[0], 4 * column + 2 * row, 0.76) << i << ' ' << left;
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
    EXPECT_EQ(std::pair(tile.At(0, 0)[0], tile.At(4, 5)[0]), std::pair(0, 4 * 4 + 2 * 5));
    std::filesystem::remove(out_ / "t.png");
    const auto all = CellBox(*layer, 0, 0, 40, 30);
    for (const auto& [box, columns, rows] : {std::tuple(CellBox(*layer, 50, 0, 60, 10), 10, 10),
                                             {CellBox(*layer, 40, 0, 50, 10), 10, 10},  // only touches
                                             {memory::Envelope(), 10, 10},
                                             {CellBox(*layer, 5, 5, 5, 10), 10, 10},
                                             {all, 0, 10},
                                             {all, 10, -3}}) {
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
    EXPECT_EQ(std::pair(tile.At(2, 20)[3], tile.At(38, 20)[3]), std::pair(0, 255));
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
    EXPECT_EQ(std::tuple(cut.width, cut.height, cut.type, cut.bands, cut.placed),
              std::tuple(5, 10, GDT_UInt16, 4, false));
    EXPECT_EQ(cut.At(2, 7)[2], spec.cell(27, 7, 2));
    std::filesystem::remove(source);  // it stays open: it may go, the run goes on
    for (const auto& [part, inside] : {std::pair(PixelWindow{0, 0, 3, 3}, true),
                                       {{30, 0, 5, 5}, false},
                                       {{2147483647, 0, 2147483647, 5}, false}}) {
        window = part;
        EXPECT_EQ(io_->CutWindow(source, window, out_ / "cut2.tif", reason_), inside) << reason_;
        EXPECT_EQ(std::filesystem::remove(out_ / "cut2.tif"), inside);
    }
    RasterSpec indexed{.nodata = 2, .palette = {{9, 8, 7, 255}, {200, 100, 50, 255}, {1, 2, 3, 255}}};
    indexed.cell = [](int x, int, int) { return x % 3; };
    window = {1, 1, 5, 5};
    ASSERT_TRUE(io_->CutWindow(Make("p.tif", indexed), window, out_ / "p.tif", reason_)) << reason_;
    EXPECT_EQ(Load(out_ / "p.tif").At(0, 0), (Shown{200, 100, 50, 255}));
    EXPECT_EQ(Load(out_ / "p.tif").At(1, 0), (Shown{1, 2, 3, 0}));
}

}  // namespace
}  // namespace orvo
