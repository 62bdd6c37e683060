// What layers say about their source, and which sources are refused.
#include <fstream>

#include "platform/gdal/RasterWorkspace.h"
#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

class GdalLayerTest : public GdalTest {
  protected:
    /// The text that opening fails with.
    static std::string Refusal(const std::string& name, Long number = 440) {
        try {
            gdal::OpenRasterLayer(name);
        } catch (const RuntimeError& failure) {
            EXPECT_EQ(failure.Number(), number);
            EXPECT_NE(failure.Description().find(name), std::string::npos) << failure.Description();
            return failure.Description();
        }
        ADD_FAILURE() << name << " was opened";
        return {};
    }
    static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(GdalLayerTest, AFileSaysWhereItLies) {
    const std::string path = Make("a b.tif", {.width = 12, .height = 7, .bands = 3, .type = GDT_UInt16});
    const auto layer = gdal::OpenRasterLayer(path);
    EXPECT_EQ(layer->FilePath(), path);
    EXPECT_FALSE(layer->IsInGeodatabase());
    EXPECT_EQ(layer->RasterDataset()->FormatName(), "GTiff");
    const auto raster = layer->Raster();
    EXPECT_EQ(std::pair(raster->Width(), raster->Height()), std::pair(12, 7));
    EXPECT_EQ(std::pair(raster->MeanCellSize().X, raster->MeanCellSize().Y), std::pair(2.0, 3.0));
    const auto extent = layer->Extent();
    EXPECT_EQ((std::array{extent->XMin(), extent->YMin(), extent->XMax(), extent->YMax()}),
              (std::array{1000.0, 5000.0 - 21, 1024.0, 5000.0}));
    extent->XMin(0);
    EXPECT_EQ(layer->Extent()->XMin(), 1000) << "the caller owns what it was given";
    EXPECT_EQ(layer->BandCount(), 3);
    EXPECT_EQ(layer->BandType(3), "UInt16");
    EXPECT_TRUE(layer->IsGeoreferenced());
}

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
    EXPECT_EQ(table->Width(), 300);

    const std::string tiff = Make("pages.tif", {});
    const auto page = gdal::OpenRasterLayer("GTIFF_DIR:1:" + tiff);
    EXPECT_EQ(page->FilePath(), tiff + "\\1");
}

TEST_F(GdalLayerTest, RefusalsNameTheFileAndTheRemedy) {
    EXPECT_TRUE(Has(Refusal(folder_ / "none.tif", 53), "Check the path"));
    EXPECT_TRUE(Has(Refusal(folder_.Put("text.tif", "this is no raster")), "Check"));
    EXPECT_TRUE(Has(Refusal(folder_.Put("empty.tif", "")), "empty"));
    EXPECT_TRUE(Has(Refusal(folder_.Path()), "Check"));
    EXPECT_TRUE(Has(Refusal(Make("rotated.tif", {.transform = {0, 1, 0.1, 0, 0.1, -1}})), "gdalwarp"));
    EXPECT_TRUE(Has(Refusal(Make("turned.tif", {.transform = {0, 0, 1, 0, 1, 0}})), "gdalwarp"));
    EXPECT_TRUE(Has(Refusal(Make("south.tif", {.transform = {0, 1, 0, 5, 0, 1}})), "south up"));
    EXPECT_TRUE(Has(Refusal(Make("west.tif", {.transform = {0, -1, 0, 5, 0, -1}})), "gdalwarp"));
}

TEST_F(GdalLayerTest, ShearFromRoundingIsNoShear) {
    EXPECT_NO_THROW(gdal::OpenRasterLayer(Make("noise.tif", {.transform = {0, 1, 1e-12, 0, -1e-12, -1}})));
}

TEST_F(GdalLayerTest, ControlPointsAloneAreRefused) {
    const std::string path = Make("points.tif", {.transform = {0, 1, 0, 0, 0, 1}});
    {
        GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), GDAL_OF_UPDATE));
        char id[] = "p";
        char info[] = "";
        const GDAL_GCP points[] = {
            {id, info, 0, 0, 7, 50, 0}, {id, info, 9, 0, 8, 50, 0}, {id, info, 0, 9, 7, 48, 0}};
        ASSERT_EQ(file->SetGCPs(3, points, static_cast<const OGRSpatialReference*>(nullptr)), CE_None);
    }
    EXPECT_TRUE(Has(Refusal(path), "gdalwarp"));
}

TEST_F(GdalLayerTest, AContainerOfSeveralRastersAsksForOne) {
    const std::string package = folder_ / "two.gpkg";
    WriteRaster(package, {.bands = 3, .driver = "GPKG", .options = {"RASTER_TABLE=one"}});
    WriteRaster(package,
                {.bands = 3, .driver = "GPKG", .options = {"RASTER_TABLE=two", "APPEND_SUBDATASET=YES"}});
    const std::string text = Refusal(package);
    EXPECT_TRUE(Has(text, "GPKG:" + package + ":one")) << text;
}

TEST_F(GdalLayerTest, FoldersAreWorkspaces) {
    Make("a.tif", {});
    const auto factory = gdal::NewRasterWorkspaceFactory();
    const std::string path = folder_.Path() + "\\.";
    const auto workspace = std::dynamic_pointer_cast<IRasterWorkspace>(factory->OpenFromFile(path, 0));
    ASSERT_NE(workspace, nullptr);
    EXPECT_EQ(workspace->PathName(), path);
    EXPECT_EQ(workspace->OpenRasterDataset("a.tif")->FormatName(), "GTiff");
    EXPECT_THROW(workspace->OpenRasterDataset("b.tif"), RuntimeError);
    EXPECT_THROW(factory->OpenFromFile(folder_ / "none", 0), RuntimeError);
    EXPECT_THROW(factory->OpenFromFile(folder_ / "a.tif", 0), RuntimeError);
}

}  // namespace
}  // namespace orvo
