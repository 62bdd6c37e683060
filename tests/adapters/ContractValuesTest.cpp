// What every envelope, dictionary, raster layer and workspace does, on the real platform and in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "platform/fake/World.h"
#include "platform/gdal/RasterLayer.h"
#include "platform/linux/Platform.h"
#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

platform::Platform MakeReal() {
    return linux_platform::MakePlatform();
}
platform::Platform MakeFake() {
    return fake::World::Make()->MakePlatform();
}

class ValuesContract : public testing::TestWithParam<platform::Platform (*)()> {
  protected:
    ValuesContract() { platform::Install(GetParam()()); }
    ~ValuesContract() override { platform::Install({}); }
    static std::shared_ptr<IEnvelope> NewEnvelope() {
        return platform::Create(platform::Current().newEnvelope);
    }
    static std::vector<double> Edges(const IEnvelope& e) { return {e.XMin(), e.YMin(), e.XMax(), e.YMax()}; }
    static std::shared_ptr<IEnvelope> Box(double x0, double y0, double x1, double y1) {
        auto box = NewEnvelope();
        box->XMin(x0);
        box->XMax(x1);
        box->YMax(y1);
        box->YMin(y0);
        return box;
    }
};

INSTANTIATE_TEST_SUITE_P(All, ValuesContract, testing::Values(&MakeReal, &MakeFake),
                         [](const auto& param) { return param.index == 0 ? "Real" : "Fake"; });

TEST_P(ValuesContract, EnvelopeStartsEmptyAndKeepsItsEdgesInOrder) {
    const auto e = NewEnvelope();
    EXPECT_TRUE(e->IsEmpty());
    EXPECT_TRUE(std::isnan(e->XMin()));
    EXPECT_EQ(e->Height(), 0);
    e->XMin(5);
    e->Width(10);
    EXPECT_TRUE(e->IsEmpty()) << "one axis alone makes no rectangle";
    EXPECT_EQ(e->XMax(), 15);
    e->YMin(3);
    e->Depth(7);
    EXPECT_FALSE(e->IsEmpty());
    EXPECT_EQ(e->Height(), 0) << "the depth runs along Z";
    EXPECT_EQ(e->Depth(), 7);
    e->Height(4);
    e->XMin(20);
    EXPECT_THAT(Edges(*e), testing::ElementsAre(15, 3, 20, 7)) << "past its opposite: the two swap";
}

TEST_P(ValuesContract, IntersectionNeedsACommonAreaAndLeavesTheOther) {
    const auto tile = Box(0, 0, 10, 10);
    const auto part = Box(5, -5, 15, 5);
    const auto copy = part->Clone();
    copy->Intersect(*tile);
    EXPECT_THAT(Edges(*copy), testing::ElementsAre(5, 0, 10, 5));
    EXPECT_THAT(Edges(*part), testing::ElementsAre(5, -5, 15, 5));
    for (const auto& other : {Box(10, 0, 20, 10), Box(11, 11, 12, 12), NewEnvelope()}) {
        const auto result = tile->Clone();
        result->Intersect(*other);
        EXPECT_TRUE(result->IsEmpty());
    }
}

TEST_P(ValuesContract, DictionaryKeepsOrderAndRefusesAKeyTwice) {
    const auto tiles = platform::Create(platform::Current().newDictionary);
    const auto item = NewEnvelope();
    tiles->Add("b", item);
    tiles->Add("B", nullptr);
    EXPECT_THROW(tiles->Add("b", nullptr), RuntimeError);
    EXPECT_THAT(tiles->Keys(), testing::ElementsAre("b", "B"));
    EXPECT_EQ(tiles->Item("b"), item);
    EXPECT_EQ(tiles->Item("c"), nullptr);
    EXPECT_FALSE(tiles->Exists("c"));
    EXPECT_EQ(tiles->Count(), 2);
}

TEST_P(ValuesContract, LayerTellsItsRasterAndHandsOutANewExtentEachTime) {
    const TempFolder folder("layer");
    std::shared_ptr<IRasterLayer> layer;
    const std::string path = folder.Path() + "/a.tif";
    if (GetParam() == &MakeReal) {
        WriteRaster(path, {.width = 40, .height = 30});
        layer = gdal::OpenRasterLayer(path);
    } else {
        layer = fake::MakeRasterLayer(fake::World::Make(), {path, 40, 30, 1000, 5000, {2, 3}, "GTiff"});
    }
    EXPECT_EQ(layer->FilePath(), path);
    EXPECT_FALSE(layer->IsInGeodatabase());
    EXPECT_EQ(layer->Raster()->Width(), 40);
    EXPECT_EQ(layer->Raster()->Height(), 30);
    EXPECT_EQ(layer->Raster()->MeanCellSize().X, 2);
    EXPECT_EQ(layer->Raster()->MeanCellSize().Y, 3);
    EXPECT_EQ(layer->Raster()->RasterDataset()->FormatName(), "GTiff");
    EXPECT_THAT(Edges(*layer->Extent()), testing::ElementsAre(1000, 4910, 1080, 5000));
    layer->Extent()->XMin(0);
    EXPECT_EQ(layer->Extent()->XMin(), 1000);
}

TEST_P(ValuesContract, WorkspaceIsAFolderThatExists) {
    const TempFolder folder("workspace");
    const auto factory = platform::Create(platform::Current().newRasterWorkspaceFactory);
    const auto workspace = std::dynamic_pointer_cast<IRasterWorkspace>(
        factory->OpenFromFile(GetParam() == &MakeReal ? folder.Path() : "C:\\out", 0));
    ASSERT_NE(workspace, nullptr);
    EXPECT_THROW(workspace->OpenRasterDataset("missing.tif"), RuntimeError);
    EXPECT_THROW(factory->OpenFromFile(folder.Path() + "/missing", 0), RuntimeError);
}

}  // namespace
}  // namespace orvo
