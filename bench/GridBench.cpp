// The vector grid: building a million tile records, looking one up, finding the tile of a point.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <memory>

#include "errorreport/ErrorDialog.h"
#include "platform/Platform.h"
#include "platform/memory/Envelope.h"
#include "platform/posix/Clock.h"
#include "tilevector/clsTileVector.h"

namespace orvo {
namespace {

constexpr Long kTilesPerAxis = 1000;

struct Tools : IUtilTools {
    Integer GetLanguageOffset() override { return 0; }
    std::string GetFreeFileName(const std::string& /*folder*/, const std::string& baseName,
                                const std::vector<std::string>& /*extensions*/) override {
        return baseName;
    }
};

/// A point that does no more than a point must.
struct FixedPoint : IGeometry, IPoint, IRelationalOperator {
    FixedPoint(double x, double y) : x_(x), y_(y) {}
    orvo::GeometryType GeometryType() const override { return GeometryType::Point; }
    bool IsEmpty() const override { return false; }
    double X() const override { return x_; }
    double Y() const override { return y_; }
    bool Within(const std::shared_ptr<IEnvelope>& e) const override {
        return e->XMin() < x_ && x_ < e->XMax() && e->YMin() < y_ && y_ < e->YMax();
    }
    bool Crosses(const std::shared_ptr<IEnvelope>& /*other*/) const override { return false; }
    bool Overlaps(const std::shared_ptr<IEnvelope>& /*other*/) const override { return false; }

  private:
    double x_;
    double y_;
};

/// A grid of 1000 × 1000 tiles of 10 × 10 units, not built yet.
std::shared_ptr<clsTileVector> MakeGrid() {
    platform::Platform made;
    made.newEnvelope = [] { return std::make_shared<memory::Envelope>(); };
    made.newUtilTools = [] { return std::make_shared<Tools>(); };
    made.clock = std::make_shared<posix::Clock>();
    platform::Install(std::move(made));
    SetErrorDialog(nullptr);
    const auto extent = std::make_shared<memory::Envelope>();
    extent->XMin(0);
    extent->YMin(0);
    extent->Width(kTilesPerAxis * 10);
    extent->Height(kTilesPerAxis * 10);
    auto grid = std::make_shared<clsTileVector>();
    grid->LayerExtent(extent);
    grid->TileWidth(10);
    grid->TileHeight(10);
    return grid;
}

/// A built grid whose tiles have their heights.
std::shared_ptr<clsTileVector> MakeBuiltGrid() {
    auto grid = MakeGrid();
    grid->InitializeTiles();
    for (Long y = 1; y <= kTilesPerAxis; ++y) {
        for (Long x = 1; x <= kTilesPerAxis; ++x) grid->GetTileExtent(x, y)->Height(10);
    }
    return grid;
}

double BytesInUse() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

/// Building only; the release of the last round's records is not timed.
void BM_BuildMillionTiles(benchmark::State& state) {
    double bytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto grid = MakeGrid();
        const double before = BytesInUse();
        state.ResumeTiming();
        grid->InitializeTiles();
        state.PauseTiming();
        bytes = BytesInUse() - before;
        grid.reset();
        state.ResumeTiming();
    }
    state.counters["bytes_per_tile"] = bytes / (kTilesPerAxis * kTilesPerAxis);
}
BENCHMARK(BM_BuildMillionTiles)->Unit(benchmark::kMillisecond);

void BM_ReleaseMillionTiles(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto grid = MakeGrid();
        grid->InitializeTiles();
        state.ResumeTiming();
        grid.reset();
    }
}
BENCHMARK(BM_ReleaseMillionTiles)->Unit(benchmark::kMillisecond);

/// Tiles far apart, one after the other, so that the records are not all in the cache.
struct Stride {
    Long n = 0;
    void Next() { n = (n + 617'039) % (kTilesPerAxis * kTilesPerAxis); }
    Long Column() const { return n % kTilesPerAxis + 1; }
    Long Row() const { return n / kTilesPerAxis + 1; }
};

void BM_GetTileID(benchmark::State& state) {
    const auto grid = MakeBuiltGrid();
    Stride at;
    for (auto _ : state) {
        benchmark::DoNotOptimize(grid->GetTileID(at.Column(), at.Row()));
        at.Next();
    }
}
BENCHMARK(BM_GetTileID);

void BM_GetTileExtent(benchmark::State& state) {
    const auto grid = MakeBuiltGrid();
    Stride at;
    for (auto _ : state) {
        benchmark::DoNotOptimize(grid->GetTileExtent(at.Column(), at.Row()));
        at.Next();
    }
}
BENCHMARK(BM_GetTileExtent);

void BM_IsInsideFirstGuess(benchmark::State& state) {
    const auto grid = MakeBuiltGrid();
    const auto point = std::make_shared<FixedPoint>(7654.5, 4321.5);
    const std::shared_ptr<IGeometry> geometry = point;
    for (auto _ : state) {
        Long x = -1;
        Long y = -1;
        if (!grid->IsInside(x, y, geometry)) state.SkipWithError("not found");
        benchmark::DoNotOptimize(x + y);
    }
}
BENCHMARK(BM_IsInsideFirstGuess);

void BM_TileCountOfMillion(benchmark::State& state) {
    const auto grid = MakeGrid();
    for (auto _ : state) benchmark::DoNotOptimize(grid->TileCount());
}
BENCHMARK(BM_TileCountOfMillion)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orvo
