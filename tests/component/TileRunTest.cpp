// clsTileImage: the tiling run over the fake platform.
#include "support/Text.h"
#include "tests/component/TileFixture.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

constexpr auto kWorks = fake::Conversion::Works;
constexpr auto kFails = fake::Conversion::Fails;

class TileRunTest : public TileTest {
  protected:
    void Run() { EXPECT_TRUE(tiler->Tile()); }
    /// What the status object was shown, in lines.
    std::string Texts() const {
        std::string texts;
        for (const auto& shown : status->shown) texts += shown.text + "\n";
        return texts;
    }
    /// The files in the output folder, by name.
    std::vector<std::string> OutputFiles() const {
        std::vector<std::string> names;
        for (const auto& [path, content] : world->files) {
            if (path.starts_with("C:\\out\\")) names.push_back(path.substr(7));
        }
        return names;
    }
    std::vector<std::string> Tiles() const { return tiler->TileObjectDict()->Keys(); }
    std::vector<double> Edges(const std::string& key) const {
        const auto e = tiler->TileObjectDict()->Item(key);
        return {e->XMin(), e->YMin(), e->XMax(), e->YMax()};
    }
};

TEST_F(TileRunTest, WalksTheGridFromTheTopLeftAndCutsTheLastColumnAndRow) {
    world->PutFile("C:\\out\\i142507_1.png", "older");
    facts = {.columns = 1000, .rows = 700, .xMin = 100, .yMax = 900};
    Bind(300);
    Run();
    const auto& windows = world->convertedWindows;
    ASSERT_EQ(windows.size(), 12U);
    EXPECT_EQ(windows[3], (PixelWindow{900, 0, 100, 300}));
    EXPECT_EQ(windows[11], (PixelWindow{900, 600, 100, 100}));
    ASSERT_EQ(Tiles().size(), 12U);
    EXPECT_EQ(Tiles()[0], "i142507_2.png") << "a new name beside an older tile";
    EXPECT_THAT(Edges(Tiles()[0]), ElementsAre(100, 600, 400, 900));
    EXPECT_THAT(Edges(Tiles()[11]), ElementsAre(1000, 200, 1100, 300));
    Run();
    EXPECT_EQ(Tiles().size(), 24U) << "runs add up";
    EXPECT_EQ(OutputFiles().size(), 25U);
    EXPECT_EQ(world->files["C:\\out\\i142507_1.png"], "older");
}

TEST_F(TileRunTest, MoreThan999TilesAreRefusedWithoutProgress) {
    facts = {.columns = 74, .rows = 54};
    Bind(2);
    Run();
    EXPECT_EQ(Tiles().size(), 999U) << "that many are allowed";
    EXPECT_EQ(status->shown.front().maxValue, 2997);
    world->languageOffset = 20000;
    Renew();
    facts = {.columns = 80, .rows = 50};
    Bind(2);
    EXPECT_TRUE(!tiler->Tile() && status->shown.empty());
    EXPECT_EQ(Messages() + Failures(), "Message: trop de tuiles (max. 999)");
}

TEST_F(TileRunTest, ProgressTextsComeInTheirOrderForEachWay) {
    Bind(100);  // larger than the raster
    Run();
    EXPECT_THAT(world->convertedWindows, ElementsAre(PixelWindow{0, 0, 9, 9}));
    const auto step = [](const char* text) { return fake::Progress{text, 0, true}; };
    EXPECT_THAT(status->shown, ElementsAre(fake::Progress{"Tiling                       ortho.png", 3, false},
                                           step("Tiling ortho.png"), step("Tiling extern"),
                                           step("Tiling: Change to png"), fake::Progress{"", 0, false}));
    status->shown.clear();
    world->convertExtern = kFails;
    Run();
    EXPECT_THAT(Texts(), testing::EndsWith("\nTiling ortho.png\nTiling extern\nTiling: Change to png\n"
                                           "Tiling: Convert to PNG\nTiling: Convert to PNG\n\n"));
    Renew();
    facts.filePath = "C:\\img\\scan.sid";
    world->exportGivesTiff = true;
    world->convertExtern = kWorks;
    Bind(-1);
    Run();
    EXPECT_EQ(Texts(),
              "Tiling                       scan.sid\nTiling scan.sid\nTiling: Convert to PNG\n"
              "Tiling: Convert to PNG\nTiling\n\n");
    tiler->StatusObject(nullptr);
    Run();
}

TEST_F(TileRunTest, FormatsAreKeptFromTheSourceOrTakenFromTheSettings) {
    for (const char*
             row :  // the external way, the source, the format asked for, and the extension of the tile
         {"works a.png JPG png", "fails a.png JPG jpg", "fails a.gif PNG png", "works a.jpg PNG jpg",
          "fails a.jpg PNG jpg", "works a.TIF PNG png", "works a.bmp GIF gif", "works a.jpeg Png png",
          "works a", "tiff a.sid TIF TIF", "tiff a.sid Png png"}) {
        std::istringstream in(row);
        std::string way, source, format, extension;
        in >> way >> source >> format >> extension;
        Renew();
        world->convertExtern = way == "fails" ? kFails : kWorks;
        world->exportGivesTiff = way == "tiff";
        facts.filePath = "C:\\img\\" + source;
        tiler->GraphicFormat(format);
        Bind(-1);
        Run();
        ASSERT_EQ(Tiles().size(), 1U);
        EXPECT_EQ(Tiles()[0].substr(Tiles()[0].find('.') + 1), extension) << row;
        EXPECT_EQ(Probe().Image().substr(Probe().Image().rfind(' ') + 1), LCase(extension));
    }
    Renew();
    facts.filePath = "C:\\img\\scan.sid";
    world->exportGivesTiff = false;
    world->convertedWindows.clear();
    world->exportedSizes.clear();
    Bind(4);
    Run();
    EXPECT_EQ(world->exportedSizes.size(), 1U) << "outside the five formats, the external way comes second";
    EXPECT_EQ(world->convertedWindows.size(), 8U);
}

TEST_F(TileRunTest, ClipCutsWindowsByTheOddRuleAndExportsAtTheFullTileSize) {
    facts = {.columns = 20, .rows = 20, .yMax = 20};
    const auto clip = fake::MakeEnvelope(world, {5, 3, 16, 13.5});
    tiler->ClipEnvelope(clip);
    Bind(10);
    Run();
    // Top left tile: x 5..10 of 0..10, y 10..13.5 of 10..20. 5 cells are odd and grow to 6.
    EXPECT_THAT(world->convertedWindows, ElementsAre(PixelWindow{0 + 6, 0 + 7, 6, 4}, testing::_, testing::_,
                                                     PixelWindow{10, 10, 6, 8}));
    EXPECT_THAT(Edges("i142507_1.png"), ElementsAre(5, 10, 10, 13.5));
    EXPECT_EQ(clip->XMin(), 5) << "the host's envelope stays";
    world->convertExtern = kFails;
    Run();
    EXPECT_EQ(world->exportedSizes.back(), (std::pair<Long, Long>{10, 10}));

    world->convertExtern = kWorks;
    world->convertedWindows.clear();
    status->shown.clear();
    tiler->ClipEnvelope(fake::MakeEnvelope(world, {10, 10, 20, 20}));
    Run();
    EXPECT_THAT(world->convertedWindows, ElementsAre(PixelWindow{10, 0, 10, 10})) << "none that only touch";
    EXPECT_EQ(std::ranges::count(status->shown, "Tiling ortho.png", &fake::Progress::text), 4)
        << "each cell has its step";
    tiler->ClipEnvelope(nullptr);
    Run();
    EXPECT_EQ(world->convertedWindows.size(), 5U);
}

TEST_F(TileRunTest, ExportLeavesNoSideFilesWhereTheFolderTextMatches) {
    world->convertExtern = kFails;
    // Each run takes two names, one for the external way and one for the export.
    world->lockedFiles = {"C:\\out\\i142507_4.aux"};
    facts.rows = 7;
    Bind(-1);
    Run();
    EXPECT_THAT(world->exportedSizes, ElementsAre(std::pair(9, 7)));
    EXPECT_THAT(OutputFiles(), ElementsAre("i142507_2.png"));
    Run();
    EXPECT_THAT(OutputFiles(), UnorderedElementsAre("i142507_2.png", "i142507_4.png", "i142507_4.aux"));
    EXPECT_EQ(Failures(), "") << "a side file that stays is no failure";
    tiler->SavePath("C:\\out\\");
    Run();
    EXPECT_THAT(OutputFiles(),
                IsSupersetOf({"i142507_6.png", "i142507_6.aux", "i142507_6.rrd", "i142507_6.png.aux.xml"}));
}

TEST_F(TileRunTest, ExportedTiffIsConvertedAndTakenAwayButForItsXml) {
    facts.filePath = "C:\\img\\scan.sid";
    world->exportGivesTiff = true;
    // Each run takes two names, one for the TIFF and one for the tile.
    world->lockedFiles = {"C:\\out\\i142507_7.tif"};
    Bind(-1);
    Run();
    EXPECT_THAT(OutputFiles(), UnorderedElementsAre("i142507_1.tif.aux.xml", "i142507_2.png"));
    tiler->GraphicConvertProg("");
    Run();
    const std::vector<std::string> all{"i142507_4.tif", "i142507_4.tfw", "i142507_4.aux", "i142507_4.rrd"};
    EXPECT_THAT(OutputFiles(), IsSupersetOf(all)) << "all of a TIFF that was not converted stays";
    world->exportWindow = kFails;
    Run();
    EXPECT_THAT(Tiles(), ElementsAre("i142507_2.png")) << "neither gives an entry";
}

TEST_F(TileRunTest, NegativeSizeEndsThroughOverflowOnly) {
    // With widths of −2^30 pixels what is left of the row passes 2^31 in the third cell.
    Bind(5);
    tiler->TileWidth(-1073741824);
    EXPECT_FALSE(tiler->Tile());
    EXPECT_EQ(Failures(), "6 Tile");
}

}  // namespace
}  // namespace orvo
