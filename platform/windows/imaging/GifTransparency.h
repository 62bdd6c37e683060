// What an encoder may leave out of a GIF.
#pragma once

#include <cstdint>
#include <string>

namespace orvo::windows {

/// Names the palette entry of a GIF's first image that is transparent, where the file names none.
void MarkTransparent(const std::string& gifFile, std::uint8_t entry);

}  // namespace orvo::windows
