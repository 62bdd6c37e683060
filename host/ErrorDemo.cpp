// orvo-tile error-demo: a failure on purpose, to see the error dialog and to try its report.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "errorreport/Procedure.h"
#include "host/Commands.h"
#include "host/CommonOptions.h"
#include "host/ErrorLog.h"
#include "host/Interrupt.h"
#include "host/Session.h"
#include "tileimage/clsTileImage.h"
#include "tiling/Errors.h"

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

int RunErrorDemo(const CommonOptions& options) {
    ProgressDisplay progress(std::cerr, ProgressMode::None);
    utility::Settings services;
    services.languageOffset = options.LanguageOffset();
    const auto desktop = InstallPlatform(
        options.OnError(), progress, [](const std::string&) {}, std::move(services));
    const clsTileImage tiler;  // sets the language, and puts its entry into the call-stack list
    const std::string saved = SavedReportPath();
    const auto savedBefore = WriteTime(saved);
    const bool wentOn = FailOnPurpose();
    nlohmann::ordered_json answer{{"shown", desktop->FailuresShown()},
                                  {"answer", wentOn ? "next" : "leave"},
                                  {"log", ErrorLogPath()},
                                  {"saved", nullptr}};
    if (WriteTime(saved) != savedBefore) answer["saved"] = saved;
    std::cout << answer.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << std::endl;
    if (!std::cout) throw RunError("the answer could not be written to standard output");
    return Interrupted() ? kExitInterrupted : kExitDone;
}

}  // namespace

Command AddErrorDemo(CLI::App& application) {
    CLI::App* const app = application.add_subcommand(
        "error-demo", "Fail on purpose: see the error dialog, try printing, mail and web, find the log");
    const auto options = std::make_shared<CommonOptions>();
    AddDialogOptions(*app, *options);
    return {app, [options] { return RunErrorDemo(*options); }};
}

}  // namespace orvo::host
