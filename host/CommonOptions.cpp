#include "host/CommonOptions.h"

#include <unistd.h>

#include <CLI/CLI.hpp>

#include "host/Errors.h"
#include "host/Values.h"

namespace orvo::host {

Integer CommonOptions::LanguageOffset() const {
    return ParseLanguage(language);
}

console::Policy CommonOptions::OnError() const {
    if (onError == "ask") return console::Policy::Ask;
    if (onError == "next") return console::Policy::Next;
    if (onError == "leave") return console::Policy::Leave;
    throw UsageError("--on-error \"" + onError + "\" is not known; choose ask, next or leave");
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

void AddCommonOptions(CLI::App& command, CommonOptions& options) {
    command.add_option("--language", options.language,
                       "Language of messages: de, en or fr (default: the locale's)");
    command
        .add_option(
            "--on-error", options.onError,
            "How a failing step goes on: ask at the terminal, next statement, or leave the procedure; "
            "ask without a terminal leaves")
        ->capture_default_str();
    command.add_flag("--overwrite", options.overwrite,
                     "Remove the files of an earlier run from OUTDIR first");
    command
        .add_option("--progress", options.progress,
                    "On standard error: bar, json (one object per line), none, or auto (a bar on a terminal)")
        ->capture_default_str();
    command.add_flag("-q,--quiet", options.quiet, "Say nothing on standard error but errors");
}

}  // namespace orvo::host
