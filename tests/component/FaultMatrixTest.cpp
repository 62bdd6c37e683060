// clsTileImage with every platform call failing, on every way a tile can take.
#include "tests/component/Faults.h"
#include "tests/component/TileFixture.h"

namespace orvo {
namespace {

struct Way {
    const char *name, *source;
    fake::Conversion external;
    bool exportGivesTiff, clipped;
    Long tiles;  ///< of an undisturbed run over 3 × 3 cells
};

constexpr auto kWorks = fake::Conversion::Works, kFails = fake::Conversion::Fails;
constexpr Way kWays[] = {{"external", "a.png", kWorks, false, false, 9},
                         {"external failing", "a.png", kFails, false, false, 9},
                         {"platform", "a.sid", kFails, false, false, 9},
                         {"platform through TIFF", "a.sid", kWorks, true, false, 9},
                         {"clipped", "a.png", kWorks, false, true, 4}};

class FaultMatrixTest : public FaultTest<TileTest> {
  protected:
    /// A world, a tiler and a layer as the way needs them.
    void Prepare(const Way& way) {
        tiler.reset();
        NewWorld();
        Renew();
        world->convertExtern = way.external;
        world->exportGivesTiff = way.exportGivesTiff;
        facts.filePath = std::string("C:\\img\\") + way.source;
        if (way.clipped) tiler->ClipEnvelope(fake::MakeEnvelope(world, {0, 0, 5.5, 4.5}));
        Bind(4);  // 3 × 3 cells, the last ones one cell wide and high
    }
    auto EntriesWithoutFile() const {
        return std::ranges::count_if(tiler->TileObjectDict()->Keys(), [&](const std::string& key) {
            return !world->HasFile("C:\\out\\" + key);
        });
    }
    /// The one stretch of a run whose failures go by without a word: on the platform's ways.
    static bool IsSideFileRemoval(const Way& way, const std::string& call) {
        const bool exports = std::string(way.source) == "a.sid" || way.external == kFails;
        const std::set<std::string> calls{"FileExists", "DeleteFile", "GetBaseName", "GetParentFolderName"};
        return exports && call.starts_with("FileSystemObject.") && calls.contains(call.substr(17));
    }
    void CheckRun(const Way& way, const Disturbed& run);

    bool result = false;
};

void FaultMatrixTest::CheckRun(const Way& way, const Disturbed& run) {
    EXPECT_TRUE(run.aboutHandler || !world->failures.empty() || IsSideFileRemoval(way, run.failed))
        << "a failure that nobody saw: " << run.failed;
    EXPECT_EQ(Probe().Grid()[2], 3);
    const Long entries = tiler->TileObjectDict()->Count();
    EXPECT_LE(entries, way.tiles + 1);
    EXPECT_TRUE(!run.IsRetried() || (result && entries == way.tiles))
        << "a retry loses nothing: " << run.failed;
    EXPECT_TRUE(run.answer == kNext || EntriesWithoutFile() == 0)
        << "only a skipped statement may record what is not there";
    const bool left = run.answer == kLeave && !world->failures.empty() && ShownLabel(0) == "Tile";
    EXPECT_TRUE(!left || (!result && world->failures.size() == 1));
    const bool skipped = run.answer == kNext && run.once && !run.threw && !run.aboutHandler;
    EXPECT_TRUE(!skipped || result) << "a skipped statement does not end the run";
    EXPECT_TRUE(world->HasFile(facts.filePath)) << "the source stays";
    world->failures.clear();
    EXPECT_TRUE(tiler->Tile()) << "usable afterwards";
    EXPECT_TRUE(world->failures.empty());
}

TEST_F(FaultMatrixTest, NoFailureOfThePlatformCrashesTheRunOrLosesATileWithoutAWord) {
    for (const Way& way : kWays) {
        Prepare(way);
        ASSERT_TRUE(tiler->Tile());
        ASSERT_EQ(tiler->TileObjectDict()->Count(), way.tiles) << way.name;
        FailEveryCall(
            way.name, [&] { Prepare(way), result = false; }, [&] { result = tiler->Tile(); },
            [&](const Disturbed& run) { CheckRun(way, run); });
    }
}

TEST_F(FaultMatrixTest, NoFailureOfThePlatformCrashesTheSetUp) {
    std::unique_ptr<clsTileImage> fresh;
    const auto setUp = [&] {
        fresh = std::make_unique<clsTileImage>();
        fresh->ImageLayer(fake::MakeRasterLayer(world, facts));
        fresh->TileWidth(4);
        fresh->TileHeight(-1);
        fresh->GetWorkspace("C:\\out");
    };
    FailEveryCall(
        "set-up", [&] { fresh.reset(), Prepare(kWays[0]); }, setUp,
        [&](const Disturbed& run) {
            EXPECT_TRUE(run.aboutHandler || !world->failures.empty()) << run.failed;
            if (!fresh) return;
            const TileImageProbe probe(*fresh);
            if (run.failed == "RasterLayer.Extent" && run.answer == kLeave) {
                EXPECT_TRUE(probe.IsBound() && probe.Place()[1] == -1) << "bound at first, read last";
                EXPECT_EQ(ShownLabel(0), "ImageLayer [SET]");
            }
            if (!run.IsRetried()) return;
            EXPECT_EQ(probe.Image(), "a.png C:\\img\\a.png png");
            EXPECT_EQ(probe.Grid(), (std::array<Long, 4>{4, 9, 3, 1}));
            EXPECT_EQ(probe.Place()[1], 9);
        });
}

}  // namespace
}  // namespace orvo
