#include "platform/windows/imaging/GifTransparency.h"

#include <array>
#include <fstream>
#include <iterator>

#include "platform/RuntimeError.h"
#include "support/SystemPath.h"

namespace orvo::windows {
namespace {

constexpr std::size_t kScreen = 13;       // bytes of signature and screen descriptor
constexpr std::size_t kScreenFlags = 10;  // where the size of the screen's palette stands
constexpr unsigned char kHasPalette = 0x80;
constexpr unsigned char kPaletteSize = 0x07;
constexpr char kExtension = 0x21;
constexpr unsigned char kGraphicControl = 0xF9;

/// Where the first block behind the screen's palette begins.
std::size_t FirstBlock(const std::string& gif) {
    const auto flags = static_cast<unsigned char>(gif.at(kScreenFlags));
    if ((flags & kHasPalette) == 0) return kScreen;
    return kScreen + 3 * (std::size_t{2} << (flags & kPaletteSize));
}

/// Where the first image's control block stands, or where one belongs: before the image.
std::size_t ControlBlock(const std::string& gif) {
    std::size_t at = FirstBlock(gif);
    while (gif.at(at) == kExtension && static_cast<unsigned char>(gif.at(at + 1)) != kGraphicControl) {
        at += 2;
        while (gif.at(at) != 0) at += static_cast<unsigned char>(gif.at(at)) + std::size_t{1};
        ++at;
    }
    return at;
}

}  // namespace

void MarkTransparent(const std::string& gifFile, std::uint8_t entry) {
    std::ifstream stream(DiskPath(gifFile), std::ios::binary);
    std::string gif{std::istreambuf_iterator<char>(stream), {}};
    stream.close();
    const std::size_t at = ControlBlock(gif);
    if (gif.at(at) == kExtension) return;
    const std::array<unsigned char, 8> control{0x21, kGraphicControl, 4, 1, 0, 0, entry, 0};
    gif.insert(at, reinterpret_cast<const char*>(control.data()), control.size());
    std::ofstream target(DiskPath(gifFile), std::ios::binary | std::ios::trunc);
    target.write(gif.data(), static_cast<std::streamsize>(gif.size()));
    target.close();
    if (!target) throw RuntimeError(Fault::DeviceIOError, gifFile);
}

}  // namespace orvo::windows
