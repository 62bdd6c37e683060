// Pixels on their way from a raster to an image file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace orvo::gdal {

struct Colour {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;
    unsigned char alpha = 255;
};

/// Up to 256 colours.
using Palette = std::vector<Colour>;

enum class Form { Indexed, Grey, GreyAlpha, RGB, RGBA };

constexpr int ChannelsOf(Form form) {
    switch (form) {
        case Form::GreyAlpha:
            return 2;
        case Form::RGB:
            return 3;
        case Form::RGBA:
            return 4;
        case Form::Indexed:
        case Form::Grey:
            break;
    }
    return 1;
}

constexpr bool HasAlpha(Form form) {
    return form == Form::GreyAlpha || form == Form::RGBA;
}

/// One image, row by row from the top, channels interleaved.
struct Pixels {
    int width = 0;
    int height = 0;
    Form form = Form::Grey;
    int depth = 8;                     ///< bits per channel, 8 or 16; 16 in the machine's byte order
    std::vector<unsigned char> bytes;  ///< reused from tile to tile
    Palette palette;                   ///< of the indexed form
    /// The one colour that is transparent, in forms without alpha; a grey stands in the first place.
    std::optional<std::array<std::uint16_t, 3>> transparent;

    int Channels() const { return ChannelsOf(form); }
    std::size_t PixelBytes() const { return static_cast<std::size_t>(Channels() * depth / 8); }
    std::size_t RowBytes() const { return PixelBytes() * static_cast<std::size_t>(width); }
    std::size_t Count() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
    void Resize(int columns, int rows) {
        width = columns;
        height = rows;
        bytes.resize(RowBytes() * static_cast<std::size_t>(rows));
    }
};

}  // namespace orvo::gdal
