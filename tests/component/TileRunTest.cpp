// clsTileImage: the tiling run over the fake platform.
#include "tests/component/TileFixture.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

class TileRunTest : public TileTest {
  protected:
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const auto& shown : status->shown) texts.push_back(shown.text);
        return texts;
    }
    /// The name of the tile written last, without extension.
    std::string LastStem() const {
        const std::string key = tiler->TileObjectDict()->Keys().back();
        return key.substr(0, key.find('.'));
    }
    std::vector<double> Edges(const std::string& key) const {
        const auto e = tiler->TileObjectDict()->Item(key);
        return {e->XMin(), e->YMin(), e->XMax(), e->YMax()};
    }
};

TEST_F(TileRunTest, WalksTheGridFromTheTopLeftAndCutsTheLastColumnAndRow) {
    facts = {.columns = 1000, .rows = 700, .xMin = 100, .yMax = 900};
    Bind(300);
    EXPECT_TRUE(tiler->Tile());
    ASSERT_EQ(world->convertedWindows.size(), 12U);
    EXPECT_EQ(world->convertedWindows[0], (PixelWindow{0, 0, 300, 300}));
    EXPECT_EQ(world->convertedWindows[3], (PixelWindow{900, 0, 100, 300}));
    EXPECT_EQ(world->convertedWindows[11], (PixelWindow{900, 600, 100, 100}));
    const auto keys = tiler->TileObjectDict()->Keys();
    ASSERT_EQ(keys.size(), 12U);
    EXPECT_EQ(keys[0], "i142507_1.png");
    EXPECT_THAT(Edges(keys[0]), ElementsAre(100, 600, 400, 900));
    EXPECT_THAT(Edges(keys[11]), ElementsAre(1000, 200, 1100, 300));
    EXPECT_EQ(OutputFiles().size(), 12U);
}

TEST_F(TileRunTest, MoreThan999TilesAreRefusedWithoutProgress) {
    facts = {.columns = 74, .rows = 54};
    Bind(2);
    EXPECT_TRUE(tiler->Tile()) << "999 are allowed";
    EXPECT_EQ(tiler->TileObjectDict()->Count(), 999);
    EXPECT_EQ(status->shown.front().maxValue, 2997);
    world->languageOffset = 20000;
    Renew();
    facts = {.columns = 80, .rows = 50};
    Bind(2);
    EXPECT_FALSE(tiler->Tile());
    ASSERT_EQ(world->messages.size(), 1U);
    EXPECT_EQ(world->messages[0].text, "trop de tuiles (max. 999)");
    EXPECT_EQ(world->messages[0].title, "Message");
    EXPECT_EQ(world->messages[0].icon, MessageIcon::Critical);
    EXPECT_TRUE(status->shown.empty());
    EXPECT_TRUE(world->failures.empty());
}

TEST_F(TileRunTest, ProgressTextsComeInTheirOrderForEachWay) {
    Bind(100);  // larger than the raster
    EXPECT_TRUE(tiler->Tile());
    EXPECT_THAT(world->convertedWindows, ElementsAre(PixelWindow{0, 0, 9, 9}));
    EXPECT_THAT(
        status->shown,
        ElementsAre(fake::Progress{"Tiling                       ortho.png", 3, false},
                    fake::Progress{"Tiling ortho.png", 0, true}, fake::Progress{"Tiling extern", 0, true},
                    fake::Progress{"Tiling: Change to png", 0, true}, fake::Progress{"", 0, false}));

    status->shown.clear();
    world->convertExtern = fake::Conversion::Fails;
    EXPECT_TRUE(tiler->Tile());
    EXPECT_THAT(Texts(), ElementsAre(testing::_, "Tiling ortho.png", "Tiling extern", "Tiling: Change to png",
                                     "Tiling: Convert to PNG", "Tiling: Convert to PNG", ""));

    Renew();
    facts.filePath = "C:\\img\\scan.sid";
    world->exportGivesTiff = true;
    world->convertExtern = fake::Conversion::Works;
    Bind(-1);
    EXPECT_TRUE(tiler->Tile());
    EXPECT_THAT(Texts(), ElementsAre(testing::_, "Tiling scan.sid", "Tiling: Convert to PNG",
                                     "Tiling: Convert to PNG", "Tiling", ""));
    Probe().Message("plain");
    EXPECT_EQ(status->shown.back(), (fake::Progress{"plain", -1, false}));
    tiler->StatusObject(nullptr);
    EXPECT_TRUE(tiler->Tile());
}

TEST_F(TileRunTest, FormatsAreKeptFromTheSourceOrTakenFromTheSettings) {
    struct Case {
        std::string source;
        std::string format;
        fake::Conversion external;
        std::string extension;  ///< of the first tile
        std::string staying;    ///< working extension afterwards
    };
    constexpr auto kWorks = fake::Conversion::Works;
    constexpr auto kFails = fake::Conversion::Fails;
    for (const Case& c : std::vector<Case>{{"a.png", "JPG", kWorks, "png", "png"},
                                           {"a.png", "JPG", kFails, "jpg", "jpg"},
                                           {"a.gif", "PNG", kFails, "png", "png"},
                                           {"a.jpg", "PNG", kWorks, "jpg", "jpg"},
                                           {"a.jpg", "PNG", kFails, "jpg", "jpg"},
                                           {"a.TIF", "PNG", kWorks, "png", "png"},
                                           {"a.bmp", "GIF", kWorks, "gif", "gif"},
                                           {"a.jpeg", "Png", kWorks, "png", "png"},
                                           {"a", "", kWorks, "", ""}}) {
        Renew();
        world->convertExtern = c.external;
        facts.filePath = "C:\\img\\" + c.source;
        tiler->GraphicFormat(c.format);
        Bind(-1);
        SCOPED_TRACE(c.source + " to " + c.format);
        EXPECT_TRUE(tiler->Tile());
        const auto keys = tiler->TileObjectDict()->Keys();
        ASSERT_EQ(keys.size(), 1U);
        EXPECT_EQ(keys[0].substr(keys[0].find('.') + 1), c.extension);
        EXPECT_EQ(Probe().Extension(), c.staying);
    }
}

TEST_F(TileRunTest, SourceOutsideTheFiveFormatsTriesTheExternalWayFromTheSecondCellOn) {
    facts.filePath = "C:\\img\\scan.sid";
    Bind(4);
    EXPECT_TRUE(tiler->Tile());
    EXPECT_EQ(world->exportedSizes.size(), 1U);
    EXPECT_EQ(world->convertedWindows.size(), 8U);
}

TEST_F(TileRunTest, ClipCutsWindowsByTheOddRuleAndExportsAtTheFullTileSize) {
    facts = {.columns = 20, .rows = 20, .yMax = 20};
    const auto clip = MakeEnvelope(5, 3, 16, 13.5);
    tiler->ClipEnvelope(clip);
    Bind(10);
    EXPECT_TRUE(tiler->Tile());
    // Top left tile: x 5..10 of 0..10, y 10..13.5 of 10..20. 5 cells are odd and grow to 6.
    ASSERT_EQ(world->convertedWindows.size(), 4U);
    EXPECT_EQ(world->convertedWindows[0], (PixelWindow{0 + 6, 0 + 7, 6, 4}));
    EXPECT_EQ(world->convertedWindows[3], (PixelWindow{10, 10, 6, 8}));
    EXPECT_THAT(Edges("i142507_1.png"), ElementsAre(5, 10, 10, 13.5));
    EXPECT_EQ(clip->XMin(), 5) << "the host's envelope stays";

    world->convertExtern = fake::Conversion::Fails;
    EXPECT_TRUE(tiler->Tile());
    EXPECT_EQ(world->exportedSizes.back(), (std::pair<Long, Long>{10, 10}));

    world->convertExtern = fake::Conversion::Works;
    world->convertedWindows.clear();
    tiler->ClipEnvelope(MakeEnvelope(10, 10, 20, 20));
    status->shown.clear();
    EXPECT_TRUE(tiler->Tile());
    EXPECT_THAT(world->convertedWindows, ElementsAre(PixelWindow{10, 0, 10, 10}))
        << "tiles that only touch the clip area are none";
    EXPECT_EQ(std::ranges::count(Texts(), "Tiling ortho.png"), 4) << "each cell has its step";
    tiler->ClipEnvelope(nullptr);
    EXPECT_TRUE(tiler->Tile());
    EXPECT_EQ(world->convertedWindows.size(), 5U);
}

TEST_F(TileRunTest, ExportLeavesNoSideFilesWhereTheFolderTextMatches) {
    world->convertExtern = fake::Conversion::Fails;
    Bind(-1);
    EXPECT_TRUE(tiler->Tile());
    EXPECT_THAT(OutputFiles(), ElementsAre(LastStem() + ".png"));

    // The next tile is the fourth name: each run reserves one for the external way and one for the export.
    world->lockedFiles = {"C:\\out\\i142507_4.aux"};
    EXPECT_TRUE(tiler->Tile());
    EXPECT_TRUE(world->failures.empty()) << "a side file that stays is no failure";
    EXPECT_THAT(OutputFiles(), testing::IsSupersetOf({LastStem() + ".aux", LastStem() + ".png"}));
    EXPECT_EQ(OutputFiles().size(), 3U);

    tiler->SavePath("C:\\out\\");
    EXPECT_TRUE(tiler->Tile());
    EXPECT_THAT(OutputFiles(), testing::IsSupersetOf({LastStem() + ".png", LastStem() + ".aux",
                                                      LastStem() + ".rrd", LastStem() + ".png.aux.xml"}));
}

TEST_F(TileRunTest, ExportedTiffIsConvertedAndTakenAwayButForItsXml) {
    facts.filePath = "C:\\img\\scan.sid";
    world->exportGivesTiff = true;
    Bind(-1);
    EXPECT_TRUE(tiler->Tile());
    EXPECT_THAT(OutputFiles(), UnorderedElementsAre("i142507_1.tif.aux.xml", "i142507_2.png"));
    EXPECT_THAT(tiler->TileObjectDict()->Keys(), ElementsAre("i142507_2.png"));

    tiler->GraphicConvertProg("");
    EXPECT_TRUE(tiler->Tile());
    EXPECT_EQ(tiler->TileObjectDict()->Count(), 1) << "no converter, no entry";
    EXPECT_THAT(OutputFiles(), testing::IsSupersetOf({"i142507_4.tif", "i142507_4.tfw", "i142507_4.aux"}))
        << "a TIFF that was not converted stays with all that belongs to it";

    world->exportWindow = fake::Conversion::Fails;
    EXPECT_TRUE(tiler->Tile());
    EXPECT_EQ(tiler->TileObjectDict()->Count(), 1);
}

TEST_F(TileRunTest, TiffConversionChoosesItsExtensionAndReportsAFileThatStays) {
    struct Case {
        std::string working, format, target;
    };
    for (const Case& c :
         std::vector<Case>{{"jpg", "png", ".jpg"}, {"tif", "TIF", ".TIF"}, {"", "Png", ".Png"}}) {
        world->files.clear();
        world->reservedNames.clear();
        world->PutFile("C:\\out\\x.tif", "tiff");
        Probe().Extension() = c.working;
        tiler->GraphicFormat(c.format);
        EXPECT_EQ(Probe().SaveTiff("C:\\out\\x.tif"), "C:\\out\\i142507_1" + c.target);
        EXPECT_FALSE(world->HasFile("C:\\out\\x.tif"));
    }
    EXPECT_EQ(Probe().SaveTiff(""), "");
    world->PutFile("C:\\else\\y.tif", "tiff");
    EXPECT_NE(Probe().SaveTiff("C:\\else\\y.tif"), "");
    EXPECT_TRUE(world->HasFile("C:\\else\\y.tif"));
    world->PutFile("C:\\out\\z.tif", "tiff");
    world->lockedFiles = {"C:\\out\\z.tif"};
    AlwaysAnswer(kNext);
    EXPECT_NE(Probe().SaveTiff("C:\\out\\z.tif"), "");
    EXPECT_EQ(ShownLabel(0), "SaveTIFFToWWW");
    EXPECT_EQ(ShownError(0), "70 (Permission denied)");
}

TEST_F(TileRunTest, RunsAddUpAndTakeNewNamesAlsoBesideOlderTiles) {
    world->PutFile("C:\\out\\i142507_1.png", "older");
    Bind(4);
    EXPECT_TRUE(tiler->Tile());
    EXPECT_TRUE(tiler->Tile());
    EXPECT_EQ(tiler->TileObjectDict()->Count(), 18);
    EXPECT_FALSE(tiler->TileObjectDict()->Exists("i142507_1.png"));
    EXPECT_EQ(world->files["C:\\out\\i142507_1.png"], "older");
}

TEST_F(TileRunTest, NegativeSizeEndsThroughOverflowOnly) {
    // With widths of −2^30 pixels what is left of the row passes 2^31 in the third cell.
    Bind(5);
    tiler->TileWidth(-1073741824);
    EXPECT_FALSE(tiler->Tile());
    EXPECT_EQ(ShownError(0), "6 (Overflow)");
    EXPECT_EQ(ShownLabel(0), "Tile");
}

}  // namespace
}  // namespace orvo
