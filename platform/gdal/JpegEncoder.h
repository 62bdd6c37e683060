// Encoding JPEG. Our own since it hands pixels to the codec as they are, with optimised Huffman tables and
// without a dataset of the raster library in between.
#pragma once

#include <span>
#include <vector>

#include "platform/gdal/Pixels.h"

namespace orvo::gdal {

/// Encodes 8-bit grey and RGB images with optimised Huffman tables and halved colour resolution.
class JpegEncoder {
  public:
    /// The complete file, valid until the next call. Fails with the library's text for images that JPEG does
    /// not hold, such as those wider or higher than 65500 pixels. @param quality 1 to 100
    std::span<const unsigned char> Encode(const Pixels& pixels, int quality);

  private:
    std::vector<unsigned char> file_;
};

}  // namespace orvo::gdal
