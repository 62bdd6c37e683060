// Sources that break and disks that fill up: no tile, a reason, nothing left behind.
#include <random>

#include "tests/adapters/FileSizeLimit.h"
#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

RasterSpec Noise(const char* driver) {
    RasterSpec spec{.width = 400, .height = 400, .bands = 3, .driver = driver};
    spec.cell = [random = std::make_shared<std::mt19937>(5)](int, int, int) { return (*random)() % 256; };
    return spec;
}

class GdalFailureTest : public GdalTest {};

TEST_F(GdalFailureTest, AFullDiskLeavesNothing) {
    const auto layer = MakeLayer(Noise("GTiff"));
    const FileSizeLimit limit(4096);
    for (const char* name : {"t.png", "t.jpg", "t.gif", "t.bmp", "t.tif", "t.webp"})
        ExpectRefused(*layer, name, 0, 0, 128, 128);
    PixelWindow window{0, 0, 128, 128};
    EXPECT_FALSE(io_->CutWindow(layer->FilePath(), window, out_ / "cut.tif", reason_));
    EXPECT_TRUE(out_.Names().empty());
}

TEST_F(GdalFailureTest, MissingCellsNeverBecomeATile) {
    const std::tuple<const char*, const char*, int> sources[] = {{"s.tif", "GTiff", 300},
                                                                 {"s.png", "PNG", 300},
                                                                 {"s.jpg", "JPEG", 300},
                                                                 {"s.bmp", "BMP", 0},
                                                                 {"s.img", "HFA", 300}};
    for (const auto& [file, driver, lostRow] : sources) {
        SCOPED_TRACE(driver);
        const std::string path = Make(file, Noise(driver));
        std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
        std::shared_ptr<gdal::RasterLayer> layer;
        try {
            layer = gdal::OpenRasterLayer(path);
        } catch (const RuntimeError&) {
            continue;  // some drivers see at once that the file is cut short
        }
        for (const char* name : {"t.png", "t.jpg", "t.gif", "t.tif"})
            ExpectRefused(*layer, name, 100, lostRow, 200, 100);
        PixelWindow window{100, lostRow, 200, 100};
        EXPECT_FALSE(io_->CutWindow(path, window, out_ / "cut.tif", reason_));
        EXPECT_TRUE(out_.Names().empty());
        EXPECT_NE(Export(*layer, "good.png", 0, 300 - lostRow, 400, 50), "") << reason_;
        std::filesystem::remove(out_ / "good.png");
    }
}

/// The library would search for days.
TEST_F(GdalFailureTest, RowsBehindAMissingOneAreNotSearchedFor) {
    std::string grid = "ncols 50\nnrows 400\nxllcorner 0\nyllcorner 0\ncellsize 1\n";
    for (int cell = 0; cell < 50 * 200; ++cell)
        grid += std::to_string(cell % 251) + (cell % 50 == 49 ? "\n" : " ");
    const std::string path = folder_.Put("grid.asc", grid);
    for (const auto& [row, isThere] : {std::pair(380, false), {150, true}, {300, false}, {0, true}}) {
        PixelWindow window{10, row, 20, 20};
        EXPECT_EQ(io_->CutWindow(path, window, out_ / "cut.tif", reason_), isThere) << row << ' ' << reason_;
        EXPECT_EQ(reason_.find("200") == std::string::npos, isThere) << reason_;
        reason_.clear();
    }
}

TEST_F(GdalFailureTest, OneBadBlockSpoilsOnlyItsTiles) {
    RasterSpec spec = Noise("GTiff");
    spec.options = {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64", "COMPRESS=DEFLATE"};
    const std::string path = Make("tiled.tif", spec);
    {
        const auto file = OpenFile(path);
        const char* offset = file->GetRasterBand(1)->GetMetadataItem("BLOCK_OFFSET_3_0", "TIFF");
        ASSERT_NE(offset, nullptr);
        std::fstream bytes(path, std::ios::in | std::ios::out | std::ios::binary);
        bytes.seekp(std::stol(offset));
        bytes << "no deflate stream at all";
    }
    const auto layer = gdal::OpenRasterLayer(path);
    for (int left = 0; left < 384; left += 64) {
        const bool bad = left == 3 * 64;
        EXPECT_EQ(Export(*layer, "t.png", left, 0, 64, 64).empty(), bad) << left << reason_;
    }
}

}  // namespace
}  // namespace orvo
