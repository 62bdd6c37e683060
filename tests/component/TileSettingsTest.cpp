// clsTileImage before a run: creation, tile sizes, layer binding, workspaces, the extent text.
#include "tests/component/TileFixture.h"

namespace orvo {
namespace {

class TileSettingsTest : public TileTest {};

TEST_F(TileSettingsTest, CreationReadsTheLanguageAndTheUsersFolderAndGoesOnWithout) {
    auto& folders = world->registry["Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"];
    folders["AppData"] = {1, std::string("C:\\Users\\me\0", 12)};
    world->languageOffset = 20000;
    Renew();
    EXPECT_EQ(LangOffset(), 20000);
    const auto tiles = tiler->TileObjectDict();
    EXPECT_EQ(tiles->Count(), 0);
    EXPECT_EQ(tiles, tiler->TileObjectDict());
    tiles->Add("kept", nullptr);
    tiler.reset();
    EXPECT_TRUE(tiles->Exists("kept")) << "the dictionary outlives its tiler";
    EXPECT_TRUE(world->failures.empty());
    EXPECT_EQ(Trace().At(0), "14:25:07 [clsTileImage] Private Sub Class_Terminate()");
    folders["AppData"] = {1, "no end"};
    Renew();
    ASSERT_EQ(world->failures.size(), 1U);
    EXPECT_EQ(ShownLabel(0), "GetString");
}

TEST_F(TileSettingsTest, SizesInMapUnitsBecomePixelsAndCountsOnEachAxisByItself) {
    struct Case {
        Long cells;
        double cell;
        std::vector<Long> sizes;
        Long pixels;
        Long count;
    };
    for (const Case& c : std::vector<Case>{{1000, 1, {-1}, 1000, 1},
                                           {1000, 1, {257}, 258, 4},
                                           {1000, 1, {256}, 256, 4},
                                           {1000, 1, {500, 100}, 100, 2},
                                           {100, 2, {100, 1000}, 500, 2},
                                           {1000, 1, {0}, 0, 1},
                                           {1000, 1, {0, 100}, 100, 10},
                                           {1000, 1, {-10}, -10, -100},
                                           {1000, 1, {-10, 500}, 500, 2},
                                           {1000, 2, {501}, 251, 4},
                                           {1000, 2, {503}, 252, 4}}) {
        for (const bool wide : {true, false}) {
            Renew();
            (wide ? facts.columns : facts.rows) = c.cells;
            (wide ? facts.cellSize.X : facts.cellSize.Y) = c.cell;
            tiler->ImageLayer(fake::MakeRasterLayer(world, facts));
            for (const Long size : c.sizes) wide ? tiler->TileWidth(size) : tiler->TileHeight(size);
            SCOPED_TRACE(testing::Message() << c.sizes.back() << " at " << c.cell);
            EXPECT_EQ(wide ? Probe().PixelWidth() : Probe().PixelHeight(), c.pixels);
            EXPECT_EQ(wide ? Probe().CountX() : Probe().CountY(), c.count);
        }
    }
    EXPECT_TRUE(world->failures.empty());
}

TEST_F(TileSettingsTest, SizeThatFailsKeepsTheOldPixelsAndCounts) {
    AlwaysAnswer(kLeave);
    tiler->TileWidth(100);
    EXPECT_EQ(ShownError(0), "91 (Object variable or With block variable not set)");
    EXPECT_EQ(ShownLabel(0), "TileWidth [LET]");
    EXPECT_EQ(Probe().PixelWidth(), 0);
    Bind(3);
    facts.cellSize = {0, 1e-300};
    tiler->ImageLayer(fake::MakeRasterLayer(world, facts));
    tiler->TileWidth(100);
    tiler->TileHeight(2000000000);
    EXPECT_EQ(ShownError(1), "11 (Division by zero)");
    EXPECT_EQ(ShownError(2), "6 (Overflow)");
    EXPECT_EQ(Probe().PixelWidth(), 4);
    EXPECT_EQ(Probe().PixelHeight(), 4);
    EXPECT_EQ(Probe().CountX(), 3);
    AlwaysAnswer(kNext);
    tiler->ImageLayer(nullptr);
    tiler->TileWidth(-1);
    EXPECT_EQ(Probe().PixelWidth(), 0) << "with the columns unread, −1 gives none";
    EXPECT_EQ(world->failures.size(), 4U);
}

TEST_F(TileSettingsTest, BindingDerivesNamePathAndExtensionByTheKindOfSource) {
    struct Case {
        std::string source;
        bool inGeodatabase;
        std::string format;
        std::string file;  ///< that exists
        std::string name;  ///< "" for rejected
        std::string path;
        std::string extension;
    };
    const std::string mdb = "C:\\gis\\city.mdb";
    for (const Case& c : std::vector<Case>{
             {"C:\\gis\\Ortho.TIF", false, "TIFF", "C:\\gis\\Ortho.TIF", "Ortho.TIF", "C:\\gis\\Ortho.TIF",
              "tif"},
             {"C:\\gis\\city.mdb\\ortho", false, "AccessRaster", mdb, "ortho", "C:\\work\\ortho", ""},
             {"C:\\gis\\city.mdb\\ortho", false, "AccessRaster", "", "", "", ""},
             {"C:\\gis\\City.MDB\\ortho", false, "AccessRaster", "C:\\gis\\City.MDB", "", "", ""},
             {"C:\\gis\\conn\\owner.ortho", true, "SDER", "", "ortho", "C:\\work\\ortho", ""},
             {"C:\\gis\\city.gdb\\ortho", false, "FGDBR", "", "ortho", "C:\\gis\\city.gdb\\ortho", ""},
             {"C:\\gis\\city.gdb\\ortho", false, "fgdbr", "", "", "", ""},
             {"D:\\grid", false, "GRID", "", "grid", "D:\\grid", ""},
             {"C:/gis/a.b/scan", false, "PNG", "C:/gis/a.b/scan", "scan", "C:/gis/a.b/scan", ""}}) {
        world = fake::World::Make();
        platform::Install(world->MakePlatform());
        world->folders.insert("D:\\grid");
        if (!c.file.empty()) world->PutFile(c.file, "x");
        Renew();
        facts.filePath = c.source;
        facts.inGeodatabase = c.inGeodatabase;
        facts.formatName = c.format;
        facts.xMin = 5;
        tiler->ImageLayer(fake::MakeRasterLayer(world, facts));
        SCOPED_TRACE(c.source + " " + c.format + " " + c.file);
        EXPECT_EQ(Probe().Name(), c.name);
        EXPECT_EQ(Probe().Path(), c.path);
        EXPECT_EQ(Probe().Extension(), c.extension);
        EXPECT_EQ(Probe().XMin(), 5) << "read for a rejected image too";
        EXPECT_EQ(Probe().YMax(), 9);
        EXPECT_EQ(Probe().CellSizeX(), 1);
        EXPECT_EQ(world->messages.size(), c.name.empty() ? 1U : 0U);
    }
}

TEST_F(TileSettingsTest, RejectedImageIsReportedInTheUsersLanguageAndKeepsThePath) {
    Bind(3);
    LangOffset() = 10000;
    tiler->ImageLayer(fake::MakeRasterLayer(world, facts), "E:\\gone.jpg");
    ASSERT_EQ(world->messages.size(), 1U);
    EXPECT_EQ(world->messages[0].text, "File not found or format not supported\r\nE:\\gone.jpg");
    EXPECT_EQ(world->messages[0].title, "Message");
    EXPECT_EQ(world->messages[0].icon, MessageIcon::Critical);
    EXPECT_EQ(Probe().Name(), "");
    EXPECT_EQ(Probe().Path(), "C:\\img\\ortho.png");
    EXPECT_FALSE(tiler->Tile());
    EXPECT_TRUE(status->shown.empty());

    world->PutFile("E:\\other.jpg", "x");
    tiler->ImageLayer(fake::MakeRasterLayer(world, facts), "E:\\other.jpg");
    EXPECT_EQ(Probe().Name(), "other.jpg");
    EXPECT_EQ(Probe().Extension(), "jpg");
}

TEST_F(TileSettingsTest, BindingNothingUnbindsAndKeepsWhatWasRead) {
    facts.xMin = 7;
    Bind(3);
    tiler->ImageLayer(nullptr);
    EXPECT_EQ(Probe().Layer(), nullptr);
    EXPECT_EQ(Probe().Name(), "ortho.png");
    EXPECT_EQ(Probe().XMin(), 7);
    EXPECT_FALSE(tiler->Tile());
    EXPECT_EQ(ShownLabel(0), "Tile");
}

TEST_F(TileSettingsTest, WorkspaceOpensAFolderOrReportsIt) {
    EXPECT_EQ(tiler->GetWorkspace("C:\\out")->PathName(), "C:\\out");
    EXPECT_EQ(tiler->GetWorkspace("C:\\missing"), nullptr);
    EXPECT_EQ(ShownLabel(0), "GetWorkspace");
    struct OtherWorkspace : IWorkspace {
        std::string PathName() override { return "table"; }
    };
    struct OtherFactory : IRasterWorkspaceFactory {
        std::shared_ptr<IWorkspace> OpenFromFile(const std::string&, Long) override {
            return std::make_shared<OtherWorkspace>();
        }
    };
    platform::Current().newRasterWorkspaceFactory = [] { return std::make_shared<OtherFactory>(); };
    EXPECT_EQ(tiler->GetWorkspace("C:\\out"), nullptr);
    EXPECT_EQ(ShownError(1), "13 (Type mismatch)");
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
    EXPECT_EQ(ShownError(0), "6 (Overflow)");
}

}  // namespace
}  // namespace orvo
