#include "tiling/output/WorldFile.h"

#include <array>
#include <cstdio>

namespace orvo::tiling {
namespace {

std::string Line(double value) {
    std::array<char, 40> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.17g\n", value));
    return text.data();
}

}  // namespace

std::string WorldFileName(const std::string& image) {
    const auto dot = image.rfind('.');
    const std::string extension = image.substr(dot + 1);
    return image.substr(0, dot + 1) + extension.front() + extension.back() + "w";
}

std::string WorldFileText(const PlacedTile& tile) {
    const Rectangle& place = tile.placement;
    const double cellWidth = (place.xMax - place.xMin) / tile.width;
    const double cellHeight = (place.yMax - place.yMin) / tile.height;
    return Line(cellWidth) + Line(0) + Line(0) + Line(-cellHeight) + Line(place.xMin + cellWidth / 2) +
           Line(place.yMax - cellHeight / 2);
}

}  // namespace orvo::tiling
