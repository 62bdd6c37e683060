// What the pixels of a TIFF mean, as far as a converter must be told.
#pragma once

#include <filesystem>
#include <optional>

namespace orvo::utility {

struct TiffLayout {
    enum Meaning { Grey = 1, Colour = 2, Palette = 3, Inks = 5 };
    int samples = 1;  ///< per pixel, alpha included
    int meaning = Grey;
};

/// The layout of a file's first image; nothing where the file is no TIFF of up to 4 GB.
std::optional<TiffLayout> ReadTiffLayout(const std::filesystem::path& file);

}  // namespace orvo::utility
