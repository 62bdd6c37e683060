// Pictures as image files that are encoded in process.
#pragma once

#include <optional>
#include <span>

#include "platform/gdal/FileInMemory.h"
#include "platform/gdal/JpegEncoder.h"
#include "platform/gdal/PngEncoder.h"
#include "platform/raster/ImageFormat.h"

namespace orvo::gdal {

/// What a picture is written as; nothing stands for a TIFF of 8 bits that takes the place of other formats.
using PictureFormat = std::optional<raster::ImageFormat>;

class PictureEncoder {
  public:
    explicit PictureEncoder(raster::Effort effort = raster::Effort::Normal) : png_(effort) {}

    /// The image file's bytes, valid until the next call. Fails with the library's text for pictures that the
    /// format does not hold. @param quality 1 to 100, where the format has losses
    std::span<const unsigned char> Encode(const Pixels& pixels, PictureFormat format, int quality);

  private:
    PngEncoder png_;
    JpegEncoder jpeg_;
    std::optional<FileInMemory> file_;  // the last one that the raster library wrote
};

}  // namespace orvo::gdal
