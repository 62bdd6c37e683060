// What layers say about their source, and which sources are refused.
#include <gmock/gmock.h>

#include "platform/gdal/ScopedOption.h"
#include "tests/Failure.h"
#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

struct GdalLayerTest : GdalTest {
    /// Opening fails with a text that names the file and has that part.
    static void ExpectRefusal(const std::string& name, const std::string& part, const char* number = "440 ") {
        EXPECT_THAT(
            FailureOf([&] { gdal::OpenRasterLayer(name); }),
            testing::AllOf(testing::StartsWith(number), testing::HasSubstr(name), testing::HasSubstr(part)));
    }
};

TEST_F(GdalLayerTest, WithoutGeoreferenceCellsAreUnits) {
    const auto layer = gdal::OpenRasterLayer(
        Make("plain.png", {.width = 12, .height = 7, .transform = {0, 1, 0, 0, 0, 1}, .driver = "PNG"}));
    EXPECT_FALSE(layer->IsGeoreferenced());
    EXPECT_EQ(layer->MeanCellSize().Y, 1);
    EXPECT_EQ(layer->Extent()->YMin(), 0);
    EXPECT_EQ(layer->Extent()->YMax(), 7);
}

TEST_F(GdalLayerTest, RastersInContainersNameContainerAndRaster) {
    const std::string package = folder_ / "maps.v2.gpkg";
    WriteRaster(
        package,
        {.width = 300, .height = 300, .bands = 3, .driver = "GPKG", .options = {"RASTER_TABLE=relief"}});
    const auto whole = gdal::OpenRasterLayer(package);
    EXPECT_TRUE(whole->IsInGeodatabase());
    EXPECT_EQ(whole->FilePath(), package + "\\maps.v2");
    const auto table = gdal::OpenRasterLayer("GPKG:" + package + ":relief");
    EXPECT_TRUE(table->IsInGeodatabase());
    EXPECT_EQ(table->FilePath(), package + "\\relief");
}

// The library's threads decode a block once for each piece of it that is read.
TEST_F(GdalLayerTest, BlocksAreDecodedOnceWhateverTheEnvironmentSays) {
    const auto threads = [] {
        namespace fs = std::filesystem;
        return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
    };
    const std::string source =
        Make("tiled.tif", {.width = 64,
                           .height = 64,
                           .bands = 3,
                           .options = {"TILED=YES", "COMPRESS=DEFLATE", "BLOCKXSIZE=32", "BLOCKYSIZE=32"}});
    const auto before = threads();
    const gdal::ScopedOption several("GDAL_NUM_THREADS", "4");
    const auto layer = gdal::OpenRasterLayer(source);
    EXPECT_NE(Export(*layer, "tile.png", 0, 0, 64, 64), "");
    PixelWindow window{.width = 64, .height = 64};
    EXPECT_TRUE(io_->CutWindow(source, window, out_ / "tile.tif", reason_)) << reason_;
    EXPECT_EQ(threads(), before);
    std::array<char, std::size_t{3} * 64 * 64> cells{};
    ASSERT_EQ(OpenFile(source)->RasterIO(GF_Read, 0, 0, 64, 64, cells.data(), 64, 64, GDT_Byte, 3, nullptr, 3,
                                         192, 1, nullptr),
              CE_None);
    EXPECT_GT(threads(), before) << "the setting does nothing";
}

TEST_F(GdalLayerTest, RefusalsNameTheFileAndTheRemedy) {
    ExpectRefusal(folder_ / "none.tif", "Check the path", "53 ");
    ExpectRefusal(folder_.Put("empty.tif", ""), "empty");
    ExpectRefusal(Make("rotated.tif", {.transform = {0, 1, 0.1, 0, 0.1, -1}}), "gdalwarp");
    ExpectRefusal(Make("south.tif", {.transform = {0, 1, 0, 5, 0, 1}}), "south up");
    ExpectRefusal(Make("west.tif", {.transform = {0, -1, 0, 5, 0, -1}}), "gdalwarp");
    EXPECT_NO_THROW(MakeLayer({.transform = {0, 1, 1e-12, 0, -1e-12, -1}})) << "a shear from rounding";

    const std::string points = Make("points.tif", {.transform = {0, 1, 0, 0, 0, 1}});
    char text[] = "";
    const GDAL_GCP control[] = {
        {text, text, 0, 0, 7, 50, 0}, {text, text, 9, 0, 8, 50, 0}, {text, text, 0, 9, 7, 48, 0}};
    OpenFile(points, GDAL_OF_UPDATE)->SetGCPs(3, control, static_cast<OGRSpatialReference*>(nullptr));
    ExpectRefusal(points, "gdalwarp");

    const std::string package = folder_ / "two.gpkg";
    WriteRaster(package, {.bands = 3, .driver = "GPKG", .options = {"RASTER_TABLE=one"}});
    WriteRaster(package,
                {.bands = 3, .driver = "GPKG", .options = {"RASTER_TABLE=two", "APPEND_SUBDATASET=YES"}});
    ExpectRefusal(package, "GPKG:" + package + ":one");
}

}  // namespace
}  // namespace orvo
