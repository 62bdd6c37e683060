// Envelopes, dictionaries, raster layers and workspaces.
#include <cmath>

#include "tests/contracts/Contract.h"

namespace orvo {
namespace {

struct ValuesContract : Contract {
    static std::vector<double> Edges(const IEnvelope& e) { return {e.XMin(), e.YMin(), e.XMax(), e.YMax()}; }
    std::shared_ptr<IEnvelope> Box(double x0, double y0, double x1, double y1) const {
        auto box = services.newEnvelope();
        box->XMin(x0), box->XMax(x1), box->YMax(y1), box->YMin(y0);
        return box;
    }
};

ORVO_CONTRACT(ValuesContract);

TEST_P(ValuesContract, EnvelopeStartsEmptyAndKeepsItsEdgesInOrder) {
    const auto e = services.newEnvelope();
    EXPECT_TRUE(e->IsEmpty() && std::isnan(e->XMin()) && e->Height() == 0);
    e->XMin(5), e->Width(10);
    EXPECT_TRUE(e->IsEmpty() && e->XMax() == 15) << "one axis alone makes no rectangle";
    e->YMin(3), e->Depth(7);
    EXPECT_TRUE(!e->IsEmpty() && e->Height() == 0 && e->Depth() == 7) << "the depth runs along Z";
    e->Height(4), e->XMin(20);
    EXPECT_THAT(Edges(*e), testing::ElementsAre(15, 3, 20, 7)) << "past its opposite: the two swap";
}

TEST_P(ValuesContract, IntersectionNeedsACommonAreaAndLeavesTheOther) {
    const auto tile = Box(0, 0, 10, 10);
    const auto part = Box(5, -5, 15, 5);
    const auto copy = part->Clone();
    copy->Intersect(*tile);
    EXPECT_THAT(Edges(*copy), testing::ElementsAre(5, 0, 10, 5));
    EXPECT_THAT(Edges(*part), testing::ElementsAre(5, -5, 15, 5));
    for (const auto& other : {Box(10, 0, 20, 10), Box(11, 11, 12, 12), services.newEnvelope()}) {
        const auto result = tile->Clone();
        result->Intersect(*other);
        EXPECT_TRUE(result->IsEmpty());
    }
}

TEST_P(ValuesContract, DictionaryKeepsOrderAndRefusesAKeyTwice) {
    const auto tiles = services.newDictionary();
    const auto item = Box(0, 0, 1, 1);
    tiles->Add("ä☕", item);
    tiles->Add("Ä☕", nullptr);
    EXPECT_EQ(NumberOf([&] { tiles->Add("ä☕", nullptr); }), 457);
    EXPECT_THAT(tiles->Keys(), testing::ElementsAre("ä☕", "Ä☕"));
    tiles->Item("ä☕")->XMax(7);
    EXPECT_EQ(item->XMax(), 7) << "items are the same object";
    EXPECT_TRUE(!tiles->Item("Ä☕") && !tiles->Item("c") && !tiles->Exists("c"));
    EXPECT_EQ(tiles->Count(), 2);
}

TEST_P(ValuesContract, LayerTellsItsRasterAndHandsOutANewExtentEachTime) {
    const auto layer = subject.openSource();
    EXPECT_EQ(layer->FilePath(), subject.source);
    EXPECT_FALSE(layer->IsInGeodatabase());
    const auto raster = layer->Raster();
    const Point cell = raster->MeanCellSize();
    EXPECT_EQ(std::tuple(raster->Width(), raster->Height(), cell.X, cell.Y), std::tuple(40, 30, 2, 3));
    EXPECT_EQ(raster->RasterDataset()->FormatName(), subject.format);
    EXPECT_THAT(Edges(*layer->Extent()), testing::ElementsAre(1000, 4910, 1080, 5000));
    layer->Extent()->XMin(0);
    EXPECT_EQ(layer->Extent()->XMin(), 1000);
}

TEST_P(ValuesContract, WorkspaceIsAFolderThatExists) {
    const auto factory = services.newRasterWorkspaceFactory();
    const auto workspace =
        std::dynamic_pointer_cast<IRasterWorkspace>(factory->OpenFromFile(subject.folder, 0));
    ASSERT_NE(workspace, nullptr);
    EXPECT_EQ(workspace->PathName(), subject.folder);
    const std::string name = subject.source.substr(subject.folder.size() + 1);
    EXPECT_EQ(workspace->OpenRasterDataset(name)->FormatName(), subject.format);
    EXPECT_THROW(workspace->OpenRasterDataset("missing.tif"), RuntimeError);
    EXPECT_EQ(NumberOf([&] { factory->OpenFromFile(subject.folder + "/missing", 0); }), 76);
}

}  // namespace
}  // namespace orvo
