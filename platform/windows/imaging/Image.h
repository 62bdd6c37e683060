// Images through the Windows Imaging Component.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/raster/ImageFormat.h"
#include "platform/windows/automation/Automation.h"
// clang-format off
#include <wincodec.h>
// clang-format on

namespace orvo::windows {

/// Rows of pixels without gaps, 8 bits per sample.
struct Pixels {
    enum class Kind { Grey = 1, Bgr = 3, Bgra = 4 };  ///< the number is that of the samples
    Kind kind = Kind::Bgr;
    int columns = 0;
    int rows = 0;
    std::vector<std::uint8_t> samples;

    Pixels() = default;
    Pixels(Kind pixelKind, int width, int height)
        : kind(pixelKind),
          columns(width),
          rows(height),
          samples(SampleCount() * static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}
    std::size_t SampleCount() const { return static_cast<std::size_t>(kind); }
    std::uint8_t* At(int column, int row) {
        return samples.data() + (static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                                 static_cast<std::size_t>(column)) *
                                    SampleCount();
    }
};

/// An image file that stays open. Rows are decoded once where they are asked for from top to bottom: the last
/// ones read are kept, whole.
class ImageSource {
  public:
    /// Fails with number 53 or 57 where the file cannot be opened as an image.
    explicit ImageSource(const std::string& path);

    int Columns() const { return columns_; }
    int Rows() const { return rows_; }
    /// "PNG", "JPEG", "BMP", "GIF" or "TIFF"; the system's other formats are refused.
    const std::string& FormatName() const { return formatName_; }
    bool HasPalette() const { return hasPalette_; }

    /// Part of the image, which lies inside it.
    Pixels Read(int column, int row, int columns, int rows);

  private:
    void Classify(IWICBitmapSource* frame);
    void KeepRows(int row, int rows);

    std::string path_;
    Ref<IWICBitmapDecoder> decoder_;
    Ref<IWICBitmapSource> source_;  ///< 32 bits, blue first
    std::string formatName_;
    int columns_ = 0;
    int rows_ = 0;
    Pixels::Kind kind_ = Pixels::Kind::Bgr;
    bool hasPalette_ = false;
    Pixels band_;
    int bandTop_ = 0;
};

using raster::ImageFormat;

/// Writes an image. A format that knows no alpha gets none; colours beyond 256 are brought down for GIF. A
/// failing call leaves the file as far as it got.
/// @param quality 1 to 100, for JPEG
void WriteImage(const std::string& path, ImageFormat format, Pixels pixels, int quality);

}  // namespace orvo::windows
