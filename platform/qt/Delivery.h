// Handing a report on: the clipboard, and the user's mail program or browser.
#pragma once

#include <string>

namespace orvo::qt {

/// Puts text on the clipboard. On X11 a clipboard ends with its owner, so the helper program takes it over;
/// on other systems the desktop does, where it can.
void PutOnClipboard(const std::string& text, const std::string& helper);

/// Whether a program opens the address, as far as is known after some seconds.
bool OpenAddress(const std::string& address);

}  // namespace orvo::qt
