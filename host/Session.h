// A command's run: the platform, the progress, and how the result is told.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/ProgressDisplay.h"
#include "platform/Types.h"
#include "platform/console/Desktop.h"
#include "tiling/Callbacks.h"
#include "tiling/Summary.h"

namespace orvo::host {

enum ExitCode : int { kExitDone = 0, kExitIncomplete = 1, kExitUsage = 2, kExitInterrupted = 130 };

/// Of the string table; `Locale` is one of the others.
enum class Language : Integer { German = 0, English = 10000, French = 20000, Locale = -1 };

/// Where failures are shown: the window where there is a display and no terminal, or always one of the two.
enum class DialogPlace { Auto, Window, Terminal };

struct SessionOptions {
    Language language = Language::Locale;
    dialog::Policy policy = dialog::Policy::Ask;
    DialogPlace place = DialogPlace::Auto;
    ProgressMode progress = ProgressMode::None;
    bool quiet = false;
};

class Session {
  public:
    /// Installs the Linux platform: failures are shown and answered as the options say, the bar makes room
    /// for them, Ctrl-C ends the run. Fails with UsageError where a window is demanded and none can be had.
    explicit Session(const SessionOptions& options);

    /// For the engine; valid as long as the session lives.
    tiling::Callbacks Callbacks();
    /// Says on standard error what the run came to, prints the summary on standard output and gives the exit
    /// code. Fails with RunError where it cannot be printed.
    int Finish(const tiling::Summary& summary) const;

  private:
    bool quiet_;
    ProgressDisplay progress_;
};

/// Says something on standard error, on one line.
void Say(const std::string& text);

/// Writes a text to standard output, all of it. Fails with RunError. @param what it is, for the failure's
/// text
void Print(const std::string& text, const std::string& what);

}  // namespace orvo::host
