// orvo-tile error-demo: a failure on purpose, to see the error dialog and to try its report.
#include <filesystem>
#include <memory>

#include "errorreport/Procedure.h"
#include "host/Commands.h"
#include "host/ErrorLog.h"
#include "host/Interrupt.h"
#include "host/Options.h"
#include "tileimage/clsTileImage.h"
#include "tiling/WatchedPlatform.h"
#include "tiling/output/JsonText.h"

namespace orvo::host {
namespace {

constexpr ProcedureText kFailOnPurpose{"[ErrorDemo] Public Function FailOnPurpose() As Boolean", "ErrorDemo",
                                       "FailOnPurpose"};

/// Fails as long as it is repeated. True where it went on with the next statement.
bool FailOnPurpose() {
    return Procedure<bool>(kFailOnPurpose).Run([](Statements& run, bool& result) {
        run([] {
            throw RuntimeError(Fault::DivisionByZero,
                               "on purpose; repeat the command to see the notice complete");
        });
        run([&] { result = true; });
    });
}

/// When a file was written; that of a missing one is the earliest there is.
std::filesystem::file_time_type WriteTime(const std::string& path) {
    std::error_code missing;
    return std::filesystem::last_write_time(path, missing);
}

int RunErrorDemo(const SessionOptions& options) {
    Session session(options);
    const tiling::WatchedPlatform watched(Interrupted, {});
    const clsTileImage tiler;  // sets the language, and puts its entry into the call-stack list
    const std::string saved = SavedReportPath();
    const auto savedBefore = WriteTime(saved);
    const bool wentOn = FailOnPurpose();
    tiling::Json answer{{"shown", watched.FailuresShown()},
                        {"answer", wentOn ? "next" : "leave"},
                        {"log", ErrorLogPath()},
                        {"saved", nullptr}};
    if (WriteTime(saved) != savedBefore) answer["saved"] = saved;
    Print(tiling::TextOf(answer) + "\n", "the answer");
    return Interrupted() ? kExitInterrupted : kExitDone;
}

}  // namespace

Command AddErrorDemo(CLI::App& application) {
    CLI::App* const app = application.add_subcommand(
        "error-demo", "Fail on purpose: see the error dialog, try printing, mail and web, find the log");
    const auto options = std::make_shared<SessionOptions>();
    AddDialogOptions(*app, *options);
    return {app, [options] { return RunErrorDemo(*options); }};
}

}  // namespace orvo::host
