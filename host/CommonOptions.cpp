#include "host/CommonOptions.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <map>

#include "host/Values.h"
#include "tiling/Errors.h"

namespace orvo::host {

Integer CommonOptions::LanguageOffset() const {
    return ParseLanguage(language);
}

FailureHandling CommonOptions::OnError() const {
    static const std::map<std::string, console::Policy> kPolicies{
        {"ask", console::Policy::Ask}, {"next", console::Policy::Next}, {"leave", console::Policy::Leave}};
    static const std::map<std::string, DialogPlace> kPlaces{
        {"auto", DialogPlace::Auto}, {"window", DialogPlace::Window}, {"terminal", DialogPlace::Terminal}};
    const auto policy = kPolicies.find(onError);
    if (policy == kPolicies.end())
        throw UsageError("--on-error \"" + onError + "\" is not known; choose ask, next or leave");
    const auto place = kPlaces.find(dialog);
    if (place == kPlaces.end())
        throw UsageError("--dialog \"" + dialog + "\" is not known; choose auto, window or terminal");
    return {policy->second, place->second};
}

ProgressMode CommonOptions::Progress() const {
    if (progress == "bar") return ProgressMode::Bar;
    if (progress == "json") return ProgressMode::Json;
    if (progress == "none") return ProgressMode::None;
    if (progress != "auto") {
        throw UsageError("--progress \"" + progress + "\" is not known; choose auto, bar, json or none");
    }
    return !quiet && isatty(STDERR_FILENO) != 0 ? ProgressMode::Bar : ProgressMode::None;
}

void AddDialogOptions(CLI::App& command, CommonOptions& options) {
    command.add_option("--language", options.language,
                       "Language of messages: de, en or fr (default: the locale's)");
    command
        .add_option(
            "--on-error", options.onError,
            "How a failing step goes on: ask, next statement, or leave the procedure; ask without anybody "
            "to answer leaves")
        ->capture_default_str();
    command
        .add_option("--dialog", options.dialog,
                    "Where to ask: window, terminal, or auto (a window where there is a display and no "
                    "terminal)")
        ->capture_default_str();
}

void AddCommonOptions(CLI::App& command, CommonOptions& options) {
    AddDialogOptions(command, options);
    command.add_flag("--overwrite", options.overwrite,
                     "Remove the files of an earlier run from OUTDIR first");
    command
        .add_option("--progress", options.progress,
                    "On standard error: bar, json (one object per line), none, or auto (a bar on a terminal)")
        ->capture_default_str();
    command.add_flag("-q,--quiet", options.quiet, "Say nothing on standard error but errors");
}

}  // namespace orvo::host
