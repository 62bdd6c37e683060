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

/// As they stand on the command line.
struct CommonOptions {
    std::string language;
    std::string onError = "ask";
    std::string progress = "auto";
    bool overwrite = false;
    bool quiet = false;

    Integer LanguageOffset() const;
    console::Policy OnError() const;
    ProgressMode Progress() const;
};

void AddCommonOptions(CLI::App& command, CommonOptions& options);

}  // namespace orvo::host
