#include "tiling/output/WorldFile.h"

#include <array>
#include <cstdio>

#include "tiling/output/ReferenceSystem.h"

namespace orvo::tiling {
namespace {

std::string Exact(double value) {
    std::array<char, 40> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.17g", value));
    return text.data();
}

std::string Line(double value) {
    return Exact(value) + "\n";
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

std::string PlaceText(const PlacedTile& tile, const std::string& system) {
    const Rectangle& place = tile.placement;
    return "<PAMDataset>\n" + SystemElement(system, 2) + "  <GeoTransform> " + Exact(place.xMin) + ", " +
           Exact((place.xMax - place.xMin) / tile.width) + ", 0, " + Exact(place.yMax) + ", 0, " +
           Exact(-(place.yMax - place.yMin) / tile.height) + "</GeoTransform>\n</PAMDataset>\n";
}

}  // namespace orvo::tiling
