// Every platform call of an attempt fails once and for good, under every answer: both classes over the fake
// platform.
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

/// What came of an attempt with one fault in it.
struct Disturbed {
    bool once;  ///< or for good
    Integer answer;
    std::string failed;  ///< the call, as "Envelope.XMin"
    bool threw = false;
    /// The fault struck what a handler itself needs, so that it may pass the procedure.
    bool aboutHandler = false;
    bool IsRetried() const { return once && answer == kRetry && !aboutHandler; }
};

template <class Base>
class FaultTest : public Base {
  protected:
    /// @param prepare makes a new world and what the attempt needs
    /// @param check sees a world that works again
    void FailEveryCall(const std::string& name, const std::function<void()>& prepare,
                       const std::function<void()>& act, const std::function<void(const Disturbed&)>& check) {
        prepare();
        this->world->FailCall(0, fake::Lasting::Once);
        act();
        const long calls = this->world->Calls();
        ASSERT_GT(calls, 10) << name;
        for (long n = 1; n <= calls; ++n) {
            for (const bool once : {true, false}) {
                for (const Integer answer : {kRetry, kNext, kLeave}) {
                    SCOPED_TRACE(testing::Message()
                                 << name << ", call " << n << (once ? " once" : " for good") << ", answer "
                                 << answer);
                    prepare();
                    check(Disturb(act, n, once, answer));
                }
            }
            if (testing::Test::HasFailure()) return;
        }
    }

  private:
    Disturbed Disturb(const std::function<void()>& act, long call, bool once, Integer answer) {
        fake::World& shared = *this->world;
        shared.answer = [&](const FailureView&) {
            constexpr std::size_t kPatience = 4;  // retries of a lasting failure before leaving
            return answer == kRetry && shared.failures.size() > kPatience ? kLeave : answer;
        };
        shared.FailCall(call, once ? fake::Lasting::Once : fake::Lasting::ForGood);
        Disturbed result{once, answer, ""};
        result.threw = NumberOf(act) != 0;
        result.failed = shared.FailedCall();
        shared.FailNothing();
        shared.answer = nullptr;
        EXPECT_NE(result.failed, "");
        result.aboutHandler = result.failed.starts_with("Clock.") || result.failed.starts_with("Desktop.");
        EXPECT_TRUE(!result.threw || result.aboutHandler || !once) << result.failed << " passed a procedure";
        return result;
    }
};

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

struct TileFaultTest : FaultTest<TileTest> {
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

void TileFaultTest::CheckRun(const Way& way, const Disturbed& run) {
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

TEST_F(TileFaultTest, NoFailureOfThePlatformCrashesTheRunOrLosesATileWithoutAWord) {
    for (const Way& way : kWays) {
        Prepare(way);
        ASSERT_TRUE(tiler->Tile());
        ASSERT_EQ(tiler->TileObjectDict()->Count(), way.tiles) << way.name;
        FailEveryCall(
            way.name, [&] { Prepare(way), result = false; }, [&] { result = tiler->Tile(); },
            [&](const Disturbed& run) { CheckRun(way, run); });
    }
}

TEST_F(TileFaultTest, NoFailureOfThePlatformCrashesTheSetUp) {
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

struct Operation {
    const char* label;
    std::function<void()> act;
    std::string undisturbed;
    std::string left = "none";  ///< what comes of it where the user leaves it, "" for anything
};

struct VectorFaultTest : FaultTest<VectorTest> {
    /// A world and a 3 × 2 grid whose tile (3, 1) reaches over (3, 2), so that a point there is searched for.
    void Prepare() {
        grid.reset();
        tell = nullptr;
        NewWorld();
        BuildGrid();
        grid->GetTileExtent(3, 2)->Height(10);
        grid->GetTileExtent(3, 1)->Height(100);
        const fake::Box tile{110, 20, 210, 70};
        line = fake::MakeGeometry(world, GeometryType::Polyline, "line",
                                  {{.rectangle = tile, .crosses = true, .clipped = "part of it"}});
        points = fake::MakeGeometry(world, GeometryType::Multipoint, "points",
                                    {{.rectangle = tile, .clipped = "one of them"}});
    }
    void Find(const Point& point) {
        Long x = -1;
        Long y = -1;
        const bool inside = grid->IsInside(x, y, fake::MakePoint(world, point));
        tell = [=] { return inside ? std::to_string(x) + "," + std::to_string(y) : "none"; };
    }
    void Clip(const std::shared_ptr<IGeometry>& geometry) {
        tell = [result = grid->Clip(2, 1, geometry)] { return Shown(result); };
    }
    static std::string Tiles(const std::shared_ptr<clsTileVector>& tiles) {
        std::string text = tiles ? "" : "none";
        for (Long n = 0; tiles && n < 6; ++n) {
            const Long x = n % 3 + 1, y = n / 3 + 1;
            text += tiles->GetTileID(x, y) + " " + Shown(tiles->GetTileExtent(x, y)) + "; ";
        }
        return text;
    }
    void Check(const Operation& operation, const Disturbed& run);

    std::shared_ptr<IGeometry> line, points;
    std::function<std::string()> tell;  ///< gives what came of the operation, none where it threw
};

void VectorFaultTest::Check(const Operation& operation, const Disturbed& run) {
    EXPECT_TRUE(run.aboutHandler || !world->failures.empty()) << "a failure that nobody saw: " << run.failed;
    const bool leftItself =
        run.answer == kLeave && !world->failures.empty() && ShownLabel(0) == operation.label;
    EXPECT_EQ(TileVectorProbe::Of(*grid), "100 50 3 2");
    EXPECT_EQ(Shown(line) + Shown(points), "linepoints") << "the input stays";
    if (tell) {
        const std::string outcome = tell();
        EXPECT_TRUE(!run.IsRetried() || outcome == operation.undisturbed) << "lost by a retry: " << outcome;
        EXPECT_TRUE(!leftItself || operation.left.empty() || outcome == operation.left) << outcome;
        EXPECT_TRUE(run.answer != kLeave || outcome.find(" 0 0;") == std::string::npos)
            << "half: " << outcome;
    }
    Do("i0");
    grid->GetTileExtent(1, 1)->Height(50);
    Find({50, 30});
    EXPECT_EQ(tell(), "1,1") << "usable afterwards";
}

TEST_F(VectorFaultTest, NoFailureOfThePlatformCrashesAProcedureOrPassesUnseen) {
    const std::string tiles =
        "grp0 10 20 100 0 50; grp1 110 20 100 0 50; grp2 210 20 100 0 50; "
        "grp3 10 70 100 0 50; grp4 110 70 100 0 50; grp5 210 70 100 0 50; ";
    const auto build = [&] {
        Do("i0");
        tell = [&] { return Tiles(grid); };
    };
    const auto clone = [&] { tell = [copy = grid->Clone()] { return Tiles(copy); }; };
    const auto find = [&](const Point& point) { return [this, point] { Find(point); }; };
    const std::vector<Operation> operations{
        {"InitializeTiles", build, tiles, ""},          {"Clip", [&] { Clip(line); }, "part of it"},
        {"Clip", [&] { Clip(points); }, "one of them"}, {"IsInside", find({150, 30}), "2,1"},
        {"IsInside", find({250, 100}), "3,1", ""},      {"Clone", clone, tiles}};
    for (const Operation& operation : operations) {
        Prepare();
        operation.act();
        ASSERT_EQ(tell(), operation.undisturbed);
        FailEveryCall(
            operation.label, [&] { Prepare(); }, operation.act,
            [&](const Disturbed& run) { Check(operation, run); });
    }
}

}  // namespace
}  // namespace orvo
