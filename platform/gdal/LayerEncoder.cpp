#include "platform/gdal/LayerEncoder.h"

#include <utility>

#include "platform/RuntimeError.h"
#include "platform/gdal/NativeTiff.h"

namespace orvo::gdal {

using raster::ImageFormat;

Holds HoldsOf(PictureFormat format) {
    if (!format) return {.transparency = true, .palette = true};
    switch (*format) {
        case ImageFormat::Png:
            return {.sixteenBits = true, .transparency = true, .palette = true};
        case ImageFormat::Gif:
            return {.transparency = true, .palette = true};
        case ImageFormat::Bmp:
            return {.palette = true};
        case ImageFormat::Jpeg:
        case ImageFormat::Tiff:
            break;
    }
    return {};
}

LayerEncoder::LayerEncoder(std::shared_ptr<RasterLayer> layer, std::optional<Range> range)
    : layer_(std::move(layer)), reader_(*layer_, range), indexer_(reader_) {}

void LayerEncoder::Reach(const TileWindow& window) {
    ReserveBlockCache(layer_->Dataset(), window);
    rows_.Reach(layer_->Dataset(), layer_->FilePath(), static_cast<int>(window.top));
}

bool LayerEncoder::Recovers(const RuntimeError& failure) {
    rows_.Restart();
    return failure.Number() == static_cast<Long>(Fault::DeviceIOError) && reader_.Recover();
}

std::span<const unsigned char> LayerEncoder::Encode(const TileWindow& window, PictureFormat format,
                                                    int quality) {
    std::span<const unsigned char> bytes;
    Read(window, [&] { bytes = EncodeOnce(window, format, quality); });
    return bytes;
}

void LayerEncoder::ReadPicture(const TileWindow& window, PictureFormat format, Pixels& pixels) {
    reader_.Read(window, HoldsOf(format), pixels);
    if (format == ImageFormat::Gif) indexer_.MakeIndexed(pixels);
}

std::span<const unsigned char> LayerEncoder::EncodeOnce(const TileWindow& window, PictureFormat format,
                                                        int quality) {
    if (format == ImageFormat::Tiff) {
        tiff_.emplace();
        CopyAsTiff(layer_->Dataset(), window, Place::Keep, *tiff_);
        return tiff_->Bytes();
    }
    ReadPicture(window, format, pixels_);
    return encoder_.Encode(pixels_, format, quality);
}

}  // namespace orvo::gdal
