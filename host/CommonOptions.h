// The options that every command has.
#pragma once

#include <string>

#include "platform/Types.h"
#include "platform/console/Desktop.h"

namespace CLI {
class App;
}

namespace orvo::host {

enum class ProgressMode { Bar, Json, None };

/// Where failures are shown: the window where there is a display and no terminal, or always one of the two.
enum class DialogPlace { Auto, Window, Terminal };

/// Who answers failures, and where they are shown.
struct FailureHandling {
    console::Policy policy = console::Policy::Ask;
    DialogPlace place = DialogPlace::Auto;
};

/// As they stand on the command line.
struct CommonOptions {
    std::string language;
    std::string onError = "ask";
    std::string dialog = "auto";
    std::string progress = "auto";
    bool overwrite = false;
    bool quiet = false;

    Integer LanguageOffset() const;
    FailureHandling OnError() const;
    ProgressMode Progress() const;
};

/// --language, --on-error and --dialog.
void AddDialogOptions(CLI::App& command, CommonOptions& options);
/// All of them.
void AddCommonOptions(CLI::App& command, CommonOptions& options);

}  // namespace orvo::host
