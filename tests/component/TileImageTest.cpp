// clsTileImage: creation, tile sizes and layers, and the tiling run over the fake platform.
#include "support/Text.h"
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

constexpr auto kWorks = fake::Conversion::Works;
constexpr auto kFails = fake::Conversion::Fails;

struct TileRunTest : TileTest {
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

class TileSettingsTest : public TileTest {};

TEST_F(TileSettingsTest, CreationReadsTheLanguageAndTheUsersFolderAndGoesOnWithout) {
    auto& folder =
        world->registry["Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"]["AppData"];
    folder = {1, std::string("C:\\Users\\me\0", 12)};
    world->languageOffset = 20000;
    Renew();
    EXPECT_EQ(LangOffset(), 20000);
    const auto tiles = tiler->TileObjectDict();
    EXPECT_EQ(tiles, tiler->TileObjectDict());
    tiler.reset();
    EXPECT_EQ(tiles->Count(), 0) << "the dictionary outlives its tiler";
    EXPECT_EQ(Failures(), "");
    EXPECT_EQ(Trace().At(0), "14:25:07 [clsTileImage] Private Sub Class_Terminate()");
    folder = {1, "no end"};
    Renew();
    EXPECT_EQ(Failures(), "5 GetString");
}

TEST_F(TileSettingsTest, SizesInMapUnitsBecomePixelsAndCountsOnEachAxisByItself) {
    for (const char* row :  // cells and their size, the sizes set, and the pixels and tiles that these give
         {"1000 1|-1|1000 1", "1000 1|257|258 4", "1000 1|500 100|100 2", "100 2|100 1000|500 2",
          "1000 1|0|0 1", "1000 1|0 100|100 10", "1000 1|-10 500|500 2", "1000 2|501|251 4",
          "1000 2|503|252 4"}) {
        std::istringstream layer(Cells(row)[0]), expected(Cells(row)[2]);
        Long cells = 0, pixels = 0, count = 0;
        double cell = 0;
        layer >> cells >> cell;
        expected >> pixels >> count;
        for (const bool wide : {true, false}) {
            Renew();
            (wide ? facts.columns : facts.rows) = cells;
            (wide ? facts.cellSize.X : facts.cellSize.Y) = cell;
            BindLayer();
            std::istringstream sizes(Cells(row)[1]);
            for (Long size = 0; sizes >> size;) wide ? tiler->TileWidth(size) : tiler->TileHeight(size);
            const std::array<Long, 4> across{pixels, 0, count, 1}, down{0, pixels, 1, count};
            EXPECT_EQ(Probe().Grid(), wide ? across : down) << row;
        }
    }
    EXPECT_EQ(Failures(), "");
}

TEST_F(TileSettingsTest, SizeThatFailsKeepsTheOldPixelsAndCounts) {
    using Grid = std::array<Long, 4>;
    tiler->TileWidth(100);
    EXPECT_EQ(Probe().Grid(), (Grid{0, 0, 1, 1}));
    Bind(3);
    facts.cellSize = {0, 1e-300};
    BindLayer();
    tiler->TileWidth(100);
    tiler->TileHeight(2000000000);
    EXPECT_EQ(Probe().Grid(), (Grid{4, 4, 3, 3}));
    EXPECT_EQ(Failures(), "91 TileWidth [LET], 11 TileWidth [LET], 6 TileHeight [LET]");
}

TEST_F(TileSettingsTest, BindingDerivesNamePathAndExtensionByTheKindOfSource) {
    for (const char* row :  // source, format, file that exists, image or nothing where it is rejected
         {"C:\\gis\\Ortho.TIF|TIFF|C:\\gis\\Ortho.TIF|Ortho.TIF C:\\gis\\Ortho.TIF tif",
          "C:\\gis\\city.mdb\\ortho|AccessRaster|C:\\gis\\city.mdb|ortho C:\\work\\ortho ",
          "C:\\gis\\city.mdb\\ortho|AccessRaster|C:\\x|  ",
          "C:\\gis\\City.MDB\\ortho|AccessRaster|C:\\gis\\City.MDB|  ",
          "C:\\gis\\conn\\owner.ortho|SDER|C:\\x|ortho C:\\work\\ortho ",
          "C:\\gis\\city.gdb\\ortho|FGDBR|C:\\x|ortho C:\\gis\\city.gdb\\ortho ",
          "C:\\gis\\city.gdb\\ortho|fgdbr|C:\\x|  ", "D:\\grid|GRID|C:\\x|grid D:\\grid ",
          "C:/gis/a.b/scan|PNG|C:/gis/a.b/scan|scan C:/gis/a.b/scan "}) {
        const auto cells = Cells(row);
        NewWorld();
        Renew();
        world->folders.insert("D:\\grid");
        world->PutFile(cells[2], "x");
        facts = {
            .filePath = cells[0], .xMin = 5, .formatName = cells[1], .inGeodatabase = cells[1] == "SDER"};
        BindLayer();
        EXPECT_EQ(Probe().Image(), cells[3]) << row;
        EXPECT_EQ(Probe().Place(), (std::array{5.0, 9.0, 1.0, 1.0})) << "read for a rejected image too";
        EXPECT_EQ(world->messages.size(), cells[3] == "  " ? 1U : 0U);
    }
}

TEST_F(TileSettingsTest, RejectedImageIsReportedInTheUsersLanguageAndKeepsThePath) {
    Bind(3);
    LangOffset() = 10000;
    BindLayer("E:\\gone.jpg");
    EXPECT_EQ(Messages(), "Message: File not found or format not supported\r\nE:\\gone.jpg");
    EXPECT_EQ(Probe().Image(), " C:\\img\\ortho.png png");
    EXPECT_TRUE(!tiler->Tile() && status->shown.empty());
    world->PutFile("E:\\other.jpg", "x");
    facts.xMin = 7;
    BindLayer("E:\\other.jpg");
    tiler->ImageLayer(nullptr);
    EXPECT_TRUE(!Probe().IsBound() && Probe().Place()[0] == 7);
    EXPECT_EQ(Probe().Image(), "other.jpg E:\\other.jpg jpg") << "what was read stays";
    EXPECT_FALSE(tiler->Tile());
    EXPECT_EQ(Failures(), "91 Tile");
}

TEST_F(TileSettingsTest, WorkspaceOpensAFolderOrReportsIt) {
    struct Table : IWorkspace {
        std::string PathName() override { return "table"; }
    };
    struct OtherFactory : IRasterWorkspaceFactory {
        std::shared_ptr<IWorkspace> OpenFromFile(const std::string&, Long) override {
            return std::make_shared<Table>();
        }
    };
    EXPECT_EQ(tiler->GetWorkspace("C:\\out")->PathName(), "C:\\out");
    EXPECT_EQ(tiler->GetWorkspace("C:\\missing"), nullptr);
    platform::Current().newRasterWorkspaceFactory = [] { return std::make_shared<OtherFactory>(); };
    EXPECT_EQ(tiler->GetWorkspace("C:\\out"), nullptr);
    EXPECT_THAT(Failures(), testing::EndsWith(" GetWorkspace, 13 GetWorkspace"));
}

TEST_F(TileSettingsTest, ExtentTextCountsUpwardAndUsesTheUsersDecimalMark) {
    EXPECT_EQ(Probe().ExtentText(1, 1), "0;0;0;0");
    facts = {.columns = 1024, .rows = 1024, .xMin = 1000, .yMax = 5000, .cellSize = {2, 2}};
    Bind(512);
    EXPECT_EQ(Probe().ExtentText(2, 1), "1512;5000;2024;5512");
    EXPECT_EQ(Probe().ExtentText(0, 3), "488;3976;1000;4488");
    platform::Current().decimalSeparator = ",";
    facts.xMin = 0.5;
    Bind(512);
    EXPECT_EQ(Probe().ExtentText(1, 1), "0,5;5000;512,5;5512");
    EXPECT_EQ(Probe().ExtentText(std::numeric_limits<Long>::min(), 1), "0;0;0;0");
    EXPECT_EQ(Failures(), "6 GetTileExtent");
}

}  // namespace
}  // namespace orvo
