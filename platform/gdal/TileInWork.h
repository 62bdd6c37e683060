// A tile between its layer and its file.
#pragma once

#include <gdal_priv.h>

#include <string>
#include <vector>

#include "platform/gdal/PictureEncoder.h"
#include "platform/raster/TileWindow.h"

namespace orvo::gdal {

/// A file with its last name only.
struct MadeFile {
    std::string name;
    std::string bytes;
};

/// What was read of a tile. Its memory serves one tile after the other.
struct TileInWork {
    explicit TileInWork(raster::Effort effort) : encoder(effort) {}

    std::string name;                  ///< of the file, without folder
    Pixels pixels;                     ///< of a picture
    std::vector<unsigned char> cells;  ///< the layer's own
    GDALDatasetUniquePtr image;  ///< over one of both; null where an encoder of our own takes the picture
    std::vector<MadeFile> made;  ///< where the tile had to be written while it was read
    PictureEncoder encoder;
};

}  // namespace orvo::gdal
