#include "platform/gdal/ImageComparison.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/Startup.h"

namespace orvo::gdal {
namespace {

using Row = std::vector<double>;

/// An image as rows of up to four channels, or of all bands where it is no picture.
class Image {
  public:
    explicit Image(const std::string& file)
        : dataset_(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER)),
          bands_(dataset_ ? dataset_->GetRasterCount() : 0) {
        if (bands_ == 0) return;
        type_ = dataset_->GetRasterBand(1)->GetRasterDataType();
        table_ = bands_ == 1 ? dataset_->GetRasterBand(1)->GetColorTable() : nullptr;
        alpha_ = (bands_ == 2 || bands_ == 4) &&
                 dataset_->GetRasterBand(bands_)->GetColorInterpretation() == GCI_AlphaBand;
    }

    bool IsOpen() const { return bands_ > 0; }
    int Width() const { return dataset_->GetRasterXSize(); }
    int Height() const { return dataset_->GetRasterYSize(); }
    int Bands() const { return bands_; }
    GDALDataType Type() const { return type_; }
    bool IsPicture() const { return (type_ == GDT_Byte || type_ == GDT_UInt16) && (bands_ <= 3 || alpha_); }

    /// Red, green, blue and alpha of a row, 0 to 1. Fills with nothing where it cannot be read.
    Row Colours(int y) const {
        const auto width = static_cast<std::size_t>(Width());
        Row row;
        const double full = type_ == GDT_Byte ? 255 : 65535;
        const Row cells = Cells(y);
        if (cells.empty()) return row;
        const int colours = alpha_ ? bands_ - 1 : bands_;
        for (std::size_t x = 0; x < width; ++x) {
            std::array<double, 4> colour{0, 0, 0, 1};
            if (table_ != nullptr) {
                GDALColorEntry entry{};
                table_->GetColorEntryAsRGB(static_cast<int>(cells[x]), &entry);
                colour = {entry.c1 / 255.0, entry.c2 / 255.0, entry.c3 / 255.0, entry.c4 / 255.0};
            } else {
                for (std::size_t c = 0; c < 3; ++c)
                    colour.at(c) =
                        cells[x + width * std::min<std::size_t>(c, static_cast<std::size_t>(colours - 1))] /
                        full;
                if (alpha_) colour[3] = cells[x + width * static_cast<std::size_t>(colours)] / full;
            }
            row.insert(row.end(), colour.begin(), colour.end());
        }
        return row;
    }

    /// A row, band after band.
    Row Cells(int y) const {
        Row cells(static_cast<std::size_t>(Width()) * static_cast<std::size_t>(bands_));
        const bool read = dataset_->RasterIO(GF_Read, 0, y, Width(), 1, cells.data(), Width(), 1, GDT_Float64,
                                             bands_, nullptr, 0, 0, 0, nullptr) == CE_None;
        return read ? cells : Row{};
    }

  private:
    GDALDatasetUniquePtr dataset_;
    int bands_;
    GDALDataType type_ = GDT_Unknown;
    const GDALColorTable* table_ = nullptr;
    bool alpha_ = false;
};

bool IsSame(const Row& a, const Row& b, bool pictures) {
    constexpr double kSameColour = 1e-9;
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [&](double x, double y) {
               return x == y || (std::isnan(x) && std::isnan(y)) ||
                      (pictures && std::abs(x - y) < kSameColour);
           });
}

}  // namespace

std::string DifferenceOfImages(const std::string& original, const std::string& copy) {
    Start();
    const ErrorCapture errors;
    const Image a(original), b(copy);
    if (!a.IsOpen() || !b.IsOpen()) return errors.Reason("it cannot be read");
    if (a.Width() != b.Width() || a.Height() != b.Height()) return "it has another size";
    const bool pictures = a.IsPicture() && b.IsPicture();
    if (!pictures && (a.Bands() != b.Bands() || GDALDataTypeUnion(a.Type(), b.Type()) != b.Type()))
        return std::to_string(b.Bands()) + " bands of " + GDALGetDataTypeName(b.Type()) + " in place of " +
               std::to_string(a.Bands()) + " of " + GDALGetDataTypeName(a.Type());
    for (int y = 0; y < a.Height(); ++y) {
        const Row from = pictures ? a.Colours(y) : a.Cells(y), to = pictures ? b.Colours(y) : b.Cells(y);
        if (from.empty() || !IsSame(from, to, pictures)) return "its values are not those of the source";
    }
    return errors.Reason("");
}

}  // namespace orvo::gdal
