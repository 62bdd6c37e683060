// The door to the window module, a shared object opened at run time. No header of the toolkit is needed here.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Desktop.h"
#include "platform/Types.h"

namespace orvo {

struct WindowOptions {
    /// Title of message boxes that bring none.
    std::string applicationName = "Orvo_Tile";
    /// Language of the desktop's own few texts: 0 German, 10000 English, 20000 French; asked whenever needed.
    std::function<Integer()> language = [] { return Integer{0}; };
    /// Once it holds, every failure is answered with "leave" without a word, also one that is being shown:
    /// the failure is the interruption.
    std::function<bool()> interrupted = [] { return false; };
    /// Called before something is shown, so that a progress bar can make room.
    std::function<void()> makeRoom = [] {};
    /// Hears each failure that is shown, as "number (description)".
    std::function<void(const std::string& failure)> onFailure = [](const std::string&) {};
    /// Where the module and its helper program lie; empty for where they are installed.
    std::string moduleFolder;
};

namespace qt {

inline constexpr const char* kModuleFile = "orvo_window.so";
inline constexpr const char* kHelperFile = "orvo-window-helper";
/// The module's one entry. The number changes with every change of WindowOptions or of IDesktop.
inline constexpr const char* kModuleEntry = "orvo_window_desktop_1";
/// Gives a desktop, or says why there is none.
/// @param displayTrouble why no window can be shown here, empty if one can; asked only where no application
/// of
///     the toolkit runs yet. The toolkit ends a process that finds no display.
using ModuleEntry = void(const WindowOptions& options, const std::string& helper,
                         const std::function<std::string()>& displayTrouble,
                         std::shared_ptr<IDesktop>& desktop, std::string& whyNot);

}  // namespace qt
}  // namespace orvo
