// clsTileImage before a run: creation, tile sizes, layer binding, workspaces, the extent text.
#include "tests/component/TileFixture.h"

namespace orvo {
namespace {

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
