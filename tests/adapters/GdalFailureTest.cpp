// Sources that break and disks that fill up: no tile, a reason, nothing left behind.
#include <sys/resource.h>

#include <csignal>
#include <random>

#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

RasterSpec Noise(const char* driver) {
    RasterSpec spec{.width = 400, .height = 400, .bands = 3, .driver = driver};
    spec.cell = [random = std::make_shared<std::mt19937>(5)](int, int, int) { return (*random)() % 256; };
    return spec;
}

/// Files larger than the limit cannot be written as long as it lives.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        static_cast<void>(std::signal(SIGXFSZ, handler_));
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    void (*handler_)(int);
    rlimit before_{};
};

class GdalFailureTest : public GdalTest {};

TEST_F(GdalFailureTest, AFullDiskLeavesNothing) {
    const auto layer = gdal::OpenRasterLayer(Make("source.tif", Noise("GTiff")));
    const FileSizeLimit limit(4096);
    for (const char* name : {"t.png", "t.jpg", "t.gif", "t.bmp", "t.tif", "t.webp"}) {
        EXPECT_EQ(Export(*layer, name, 0, 0, 128, 128), "") << name;
        EXPECT_NE(reason_, "") << name;
    }
    PixelWindow window{0, 0, 128, 128};
    reason_.clear();
    EXPECT_FALSE(io_->CutWindow(layer->FilePath(), window, out_ / "cut.tif", reason_));
    EXPECT_NE(reason_, "");
    EXPECT_TRUE(out_.Names().empty());
}

struct Source {
    const char* name;
    const char* driver;
    int lostRow = 300;
    int keptRow = 0;
};

void PrintTo(const Source& source, std::ostream* out) {
    *out << source.name;
}

class GdalBrokenSourceTest : public GdalTest, public testing::WithParamInterface<Source> {};

TEST_P(GdalBrokenSourceTest, MissingCellsNeverBecomeATile) {
    const int lost = GetParam().lostRow;
    const RasterSpec spec = Noise(GetParam().driver);
    const std::string path = Make(GetParam().name, spec);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
    std::shared_ptr<gdal::RasterLayer> layer;
    try {
        layer = gdal::OpenRasterLayer(path);
    } catch (const RuntimeError&) {
        return;  // some drivers see at once that the file is cut short
    }
    for (const char* name : {"t.png", "t.jpg", "t.gif", "t.tif"}) {
        EXPECT_EQ(Export(*layer, name, 100, lost, 200, 100), "") << name;
        EXPECT_NE(reason_, "") << name;
    }
    PixelWindow window{100, lost, 200, 100};
    EXPECT_FALSE(io_->CutWindow(path, window, out_ / "cut.tif", reason_));
    EXPECT_TRUE(out_.Names().empty());
    EXPECT_NE(Export(*layer, "good.png", 0, GetParam().keptRow, 400, 50), "") << reason_;
}

INSTANTIATE_TEST_SUITE_P(Formats, GdalBrokenSourceTest,
                         testing::Values(Source{"s.tif", "GTiff"}, Source{"s.png", "PNG"},
                                         Source{"s.jpg", "JPEG"}, Source{"s.bmp", "BMP", 0, 300},
                                         Source{"s.img", "HFA"}),
                         [](const auto& source) { return std::string(source.param.driver); });

TEST_F(GdalFailureTest, ASourceCutShortDuringTheRunFailsFromThere) {
    const std::string path = Make("source.tif", Noise("GTiff"));
    const auto layer = gdal::OpenRasterLayer(path);
    EXPECT_NE(Export(*layer, "a.png", 0, 0, 100, 100), "") << reason_;
    EXPECT_NE(Export(*layer, "b.png", 100, 0, 100, 100), "") << reason_;
    std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
    EXPECT_EQ(Export(*layer, "c.png", 0, 300, 100, 100), "");
    EXPECT_NE(reason_, "");
    // The stretch needs every cell, so nothing is shown with half of them unread.
    EXPECT_EQ(out_.Names(), (std::vector<std::string>{"a.png", "b.png"}));
}

TEST_F(GdalFailureTest, OneBadBlockSpoilsOnlyItsTiles) {
    RasterSpec spec = Noise("GTiff");
    spec.options = {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64", "COMPRESS=DEFLATE"};
    const std::string path = Make("tiled.tif", spec);
    {
        GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
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
