// The platform on Windows, put together: what the COM face installs before the component is used.
#pragma once

#include "platform/Platform.h"

namespace orvo::windows {

/// Environment variable that answers failures where nobody can: "ask" (the default) shows the error dialog,
/// "next" goes on with the next statement, "leave" leaves the procedure; both without a window, and message
/// boxes are answered with OK or No. Read at every failure. Without a screen, "ask" acts as "leave".
inline constexpr const wchar_t* kOnErrorVariable = L"ORVO_TILE_ON_ERROR";

/// Environment variable with the language of texts: "de", "en" or "fr"; otherwise that of the user's Windows
/// (German, French, English for every other). Without effect where the host's utility library is registered.
inline constexpr const wchar_t* kLanguageVariable = L"ORVO_TILE_LANGUAGE";

/// Makes no object before one is asked for. COM must be initialised on the calling thread by then.
platform::Platform MakePlatform();

}  // namespace orvo::windows
