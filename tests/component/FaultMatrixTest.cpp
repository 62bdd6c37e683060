// Every platform call of a run fails once and for good, under every answer, on every way a tile can take.
#include <cstdio>

#include "tests/component/TileFixture.h"

namespace orvo {
namespace {

struct Way {
    const char* name;
    const char* source;
    fake::Conversion external;
    bool exportGivesTiff;
    bool clipped;
    Long tiles;  ///< of an undisturbed run over 3 × 3 cells
};

constexpr Way kWays[] = {
    {"external", "a.png", fake::Conversion::Works, false, false, 9},
    {"external failing", "a.png", fake::Conversion::Fails, false, false, 9},
    {"platform", "a.sid", fake::Conversion::Fails, false, false, 9},
    {"platform through TIFF", "a.sid", fake::Conversion::Works, true, false, 9},
    {"clipped", "a.png", fake::Conversion::Works, false, true, 4},
};

class FaultMatrixTest : public TileTest {
  protected:
    /// A world, a tiler and a layer as the way needs them.
    void Prepare(const Way& way) {
        tiler.reset();
        world = fake::World::Make();
        platform::Install(world->MakePlatform());
        SetErrorDialog(std::make_unique<Ferrow>());
        Renew();
        world->convertExtern = way.external;
        world->exportGivesTiff = way.exportGivesTiff;
        facts.filePath = std::string("C:\\img\\") + way.source;
        if (way.clipped) tiler->ClipEnvelope(MakeEnvelope(0, 0, 5.5, 4.5));
        Bind(4);  // 3 × 3 cells, the last ones one cell wide and high
    }
    bool IsAboutTheHandlerItself() const {
        return world->FailedCall().starts_with("Clock.") || world->FailedCall().starts_with("Desktop.");
    }
    /// Entries whose file is missing: only a skipped statement may leave such an entry.
    Long EntriesWithoutFile() const {
        Long missing = 0;
        for (const auto& key : tiler->TileObjectDict()->Keys()) {
            if (!world->HasFile("C:\\out\\" + key)) ++missing;
        }
        return missing;
    }
    /// The one stretch of a run whose failures go by without a word: on the platform's ways.
    static bool IsSideFileRemoval(const Way& way, const std::string& call) {
        const bool exports = std::string(way.source) == "a.sid" || way.external == fake::Conversion::Fails;
        return exports &&
               (call == "FileSystemObject.FileExists" || call == "FileSystemObject.DeleteFile" ||
                call == "FileSystemObject.GetBaseName" || call == "FileSystemObject.GetParentFolderName");
    }
    void CheckSetUp(long n, fake::Lasting lasting, Integer answer);
    void CheckOne(const Way& way, long n, fake::Lasting lasting, Integer answer);

    long cases = 0;
};

void FaultMatrixTest::CheckOne(const Way& way, long n, fake::Lasting lasting, Integer answer) {
    ++cases;
    SCOPED_TRACE(testing::Message() << way.name << ", call " << n
                                    << (lasting == fake::Lasting::Once ? " once" : " for good") << ", answer "
                                    << answer);
    Prepare(way);
    constexpr std::size_t kPatience = 4;  // retries of a lasting failure before leaving
    world->answer = [&](const FailureView&) {
        return answer == kRetry && world->failures.size() > kPatience ? kLeave : answer;
    };
    const Long before = Probe().CountX();
    world->FailCall(n, lasting);
    bool result = false;
    bool callFailed = false;
    try {
        result = tiler->Tile();
    } catch (const RuntimeError&) {
        callFailed = true;
    }
    const std::string failed = world->FailedCall();
    world->FailNothing();
    ASSERT_FALSE(failed.empty());
    const bool aboutHandler = IsAboutTheHandlerItself();
    const bool quiet = IsSideFileRemoval(way, failed) && world->failures.empty();
    // Nothing passes the procedure but a failure of its own entry or of its handler.
    EXPECT_TRUE(!callFailed || aboutHandler || lasting == fake::Lasting::ForGood) << failed;
    EXPECT_TRUE(quiet || aboutHandler || !world->failures.empty()) << "a failure that nobody saw: " << failed;
    EXPECT_EQ(Probe().CountX(), before);

    const Long entries = tiler->TileObjectDict()->Count();
    if (lasting == fake::Lasting::Once && answer == kRetry && !aboutHandler) {
        EXPECT_TRUE(result) << failed;
        EXPECT_EQ(entries, way.tiles) << "a retry loses nothing";
        EXPECT_EQ(EntriesWithoutFile(), 0);
    }
    if (answer != kNext) {
        EXPECT_EQ(EntriesWithoutFile(), 0) << "only a skipped statement may record what is not there";
    }
    if (answer == kLeave && !world->failures.empty() && world->failures.front().rows[2].text == "Tile") {
        EXPECT_FALSE(result);
        EXPECT_EQ(world->failures.size(), 1U);
    }
    if (answer == kNext && lasting == fake::Lasting::Once && !callFailed && !aboutHandler) {
        EXPECT_TRUE(result) << "a skipped statement does not end the run";
    }
    EXPECT_LE(entries, way.tiles + 1);
    EXPECT_TRUE(world->HasFile(facts.filePath)) << "the source stays";
    // The tiler is usable afterwards.
    world->answer = nullptr;
    world->failures.clear();
    EXPECT_TRUE(tiler->Tile());
    EXPECT_TRUE(world->failures.empty());
}

/// Creation, binding, sizes and workspace with the n-th call failing.
void FaultMatrixTest::CheckSetUp(long n, fake::Lasting lasting, Integer answer) {
    ++cases;
    SCOPED_TRACE(testing::Message() << "set-up, call " << n << ", answer " << answer);
    Prepare(kWays[0]);
    world->answer = [&](const FailureView&) {
        return answer == kRetry && world->failures.size() > 4 ? kLeave : answer;
    };
    world->FailCall(n, lasting);
    const auto attempt = [&](const std::function<void()>& step) {
        try {
            step();
        } catch (const RuntimeError&) {
            EXPECT_TRUE(IsAboutTheHandlerItself() || lasting == fake::Lasting::ForGood)
                << world->FailedCall();
        }
    };
    std::unique_ptr<clsTileImage> fresh;
    attempt([&] { fresh = std::make_unique<clsTileImage>(); });
    attempt([&] {
        if (fresh) fresh->ImageLayer(fake::MakeRasterLayer(world, facts));
    });
    attempt([&] {
        if (fresh) fresh->TileWidth(4);
    });
    attempt([&] {
        if (fresh) fresh->TileHeight(-1);
    });
    attempt([&] {
        if (fresh) fresh->GetWorkspace("C:\\out");
    });
    EXPECT_FALSE(world->FailedCall().empty());
    EXPECT_TRUE(IsAboutTheHandlerItself() || !world->failures.empty()) << world->FailedCall();
    const bool healed = lasting == fake::Lasting::Once && answer == kRetry && !IsAboutTheHandlerItself();
    world->FailNothing();
    if (healed) {
        const TileImageProbe probe(*fresh);
        EXPECT_EQ(probe.Name(), "a.png");
        EXPECT_EQ(probe.CountX(), 3);
        EXPECT_EQ(probe.PixelHeight(), 9);
        EXPECT_EQ(probe.YMax(), 9);
    }
}

TEST_F(FaultMatrixTest, NoFailureOfThePlatformCrashesTheSetUp) {
    Prepare(kWays[0]);
    world->FailCall(0, fake::Lasting::Once);
    clsTileImage fresh;
    fresh.ImageLayer(fake::MakeRasterLayer(world, facts));
    fresh.TileWidth(4);
    fresh.TileHeight(-1);
    fresh.GetWorkspace("C:\\out");
    const long calls = world->Calls();
    for (const auto lasting : {fake::Lasting::Once, fake::Lasting::ForGood}) {
        for (const Integer answer : {kRetry, kNext, kLeave}) {
            for (long n = 1; n <= calls; ++n) CheckSetUp(n, lasting, answer);
        }
    }
    std::printf("fault matrix of the set-up: %ld cases\n", cases);
}

TEST_F(FaultMatrixTest, NoFailureOfThePlatformCrashesTheRunOrLosesATileWithoutAWord) {
    for (const Way& way : kWays) {
        Prepare(way);
        world->FailCall(0, fake::Lasting::Once);
        ASSERT_TRUE(tiler->Tile());
        const long calls = world->Calls();
        ASSERT_EQ(tiler->TileObjectDict()->Count(), way.tiles) << way.name;
        for (const auto lasting : {fake::Lasting::Once, fake::Lasting::ForGood}) {
            for (const Integer answer : {kRetry, kNext, kLeave}) {
                for (long n = 1; n <= calls; ++n) CheckOne(way, n, lasting, answer);
            }
        }
        if (HasFailure()) break;
    }
    RecordProperty("cases", static_cast<int>(cases));
    std::printf("fault matrix: %ld cases\n", cases);
}

}  // namespace
}  // namespace orvo
