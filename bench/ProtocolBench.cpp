// What every procedure pays: its entry, and its statements where nothing fails.
#include <benchmark/benchmark.h>

#include <memory>

#include "errorreport/Procedure.h"
#include "platform/fake/World.h"
#include "platform/posix/Clock.h"

namespace orvo {
namespace {

constexpr ProcedureText kText{
    "[clsTileImage] Private Sub CreateMessageText(ByVal strText As String, Optional ByVal lngMaxValue As "
    "Long = "
    "-1, Optional ByVal blnStep As Boolean = False)",
    "clsTileImage", "CreateMessageText"};

void InstallRealClock() {
    platform::Platform made = fake::World::Make()->MakePlatform();
    made.clock = std::make_shared<posix::Clock>();
    platform::Install(std::move(made));
    SetErrorDialog(nullptr);
}

void BM_ProcedureEntry(benchmark::State& state) {
    InstallRealClock();
    const Procedure<void> procedure(kText);
    for (auto _ : state) procedure.Run([](Statements&) {});
}
BENCHMARK(BM_ProcedureEntry);

void BM_EntryAndTenStatements(benchmark::State& state) {
    InstallRealClock();
    const Procedure<Long> procedure(kText);
    for (auto _ : state) {
        benchmark::DoNotOptimize(procedure.Run([](Statements& run, Long& sum) {
            for (Long i = 0; i < 10; ++i) run([&] { sum += i; });
        }));
    }
}
BENCHMARK(BM_EntryAndTenStatements);

}  // namespace
}  // namespace orvo
