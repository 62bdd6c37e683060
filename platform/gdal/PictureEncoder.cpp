#include "platform/gdal/PictureEncoder.h"

namespace orvo::gdal {

using raster::ImageFormat;

std::span<const unsigned char> PictureEncoder::Encode(const Pixels& pixels, PictureFormat format,
                                                      int quality) {
    if (format == ImageFormat::Png) return png_.Encode(pixels);
    if (format == ImageFormat::Jpeg) return jpeg_.Encode(pixels, quality);
    file_.emplace();
    if (format == ImageFormat::Gif) {
        WriteGif(pixels, *file_);
    } else if (format == ImageFormat::Bmp) {
        WriteBmp(pixels, *file_);
    } else {
        WriteTiff(pixels, *file_);
    }
    return file_->Bytes();
}

}  // namespace orvo::gdal
