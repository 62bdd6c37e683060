// The PNG encoder, read back by another library.
#include <random>

#include "platform/gdal/PngEncoder.h"
#include "support/FileReplace.h"
#include "tests/adapters/GdalRasters.h"

namespace orvo {
namespace {

using gdal::Form;
using gdal::Pixels;

enum class Texture { Noise, Smooth, Flat };

Pixels Image(Form form, int depth, int width, int height, Texture texture) {
    Pixels pixels;
    pixels.form = form;
    pixels.depth = depth;
    pixels.Resize(width, height);
    std::mt19937 random(1);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same image every time
    const int channels = pixels.Channels();
    for (std::size_t i = 0; i < pixels.Count() * static_cast<std::size_t>(channels); ++i) {
        const auto pixel = static_cast<int>(i) / channels;
        const int smooth = (pixel % width) * 3 + (pixel / width) * 5 + static_cast<int>(random() % 3);
        const unsigned value = texture == Texture::Noise ? static_cast<unsigned>(random())
                               : texture == Texture::Smooth
                                   ? static_cast<unsigned>(smooth)
                                   : static_cast<unsigned>(pixel % width < 5 ? 40 : 200);
        if (depth == 16) {
            reinterpret_cast<std::uint16_t*>(pixels.bytes.data())[i] =
                static_cast<std::uint16_t>(value * 257);
        } else {
            pixels.bytes[i] = static_cast<unsigned char>(value);
        }
    }
    if (form == Form::Indexed) {
        for (int i = 0; i < 256; ++i) {
            const auto level = static_cast<unsigned char>(i);
            pixels.palette.push_back({level, static_cast<unsigned char>(255 - i), 9, 255});
        }
        pixels.palette[7].alpha = 99;
    }
    return pixels;
}

class GdalPngTest : public GdalTest {
  protected:
    /// Every channel of the file, interleaved, in the machine's byte order.
    std::vector<unsigned char> ReadBack(const Pixels& pixels) {
        GDALDatasetUniquePtr file(
            GDALDataset::Open((out_ / "t.png").c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
        EXPECT_NE(file, nullptr);
        EXPECT_EQ(file->GetRasterCount(), pixels.Channels());
        EXPECT_EQ(file->GetRasterBand(1)->GetRasterDataType(), pixels.depth == 16 ? GDT_UInt16 : GDT_Byte);
        std::vector<unsigned char> bytes(pixels.bytes.size());
        const auto channel = pixels.depth / 8;
        const gdal::Complaints complaints;
        EXPECT_EQ(file->RasterIO(GF_Read, 0, 0, pixels.width, pixels.height, bytes.data(), pixels.width,
                                 pixels.height, pixels.depth == 16 ? GDT_UInt16 : GDT_Byte, pixels.Channels(),
                                 nullptr, static_cast<GSpacing>(pixels.PixelBytes()),
                                 static_cast<GSpacing>(pixels.RowBytes()), channel, nullptr),
                  CE_None);
        EXPECT_FALSE(complaints.Failed()) << complaints.Reason("");
        return bytes;
    }
    gdal::PngEncoder encoder_;
};

TEST_F(GdalPngTest, EveryFormReadsBackAsItWas) {
    for (const Form form : {Form::Indexed, Form::Grey, Form::GreyAlpha, Form::RGB, Form::RGBA}) {
        for (const int depth : {8, 16}) {
            if (form == Form::Indexed && depth == 16) continue;
            for (const auto& [width, height] : {std::pair(1, 1), {1, 40}, {3, 2}, {257, 33}, {600, 5}}) {
                for (const Texture texture : {Texture::Noise, Texture::Smooth, Texture::Flat}) {
                    const Pixels pixels = Image(form, depth, width, height, texture);
                    const auto& bytes = encoder_.Encode(pixels);
                    ASSERT_EQ(ReplaceFile(out_ / "t.png", std::span(bytes)), "");
                    EXPECT_EQ(ReadBack(pixels), pixels.bytes)
                        << "form " << static_cast<int>(form) << " depth " << depth << ", " << width << " x "
                        << height;
                }
            }
        }
    }
}

TEST_F(GdalPngTest, PalettesAndTransparentColoursAreKept) {
    Pixels pixels = Image(Form::Indexed, 8, 16, 16, Texture::Noise);
    pixels.bytes[0] = 7;
    ASSERT_EQ(ReplaceFile(out_ / "t.png", std::span(encoder_.Encode(pixels))), "");
    EXPECT_EQ(Load(out_ / "t.png").At(0, 0), (Shown{7, 248, 9, 99}));

    pixels = Image(Form::RGB, 16, 16, 16, Texture::Noise);
    const auto* first = reinterpret_cast<const std::uint16_t*>(pixels.bytes.data());
    pixels.transparent = {{first[0], first[1], first[2]}};
    ASSERT_EQ(ReplaceFile(out_ / "t.png", std::span(encoder_.Encode(pixels))), "");
    EXPECT_EQ(Load(out_ / "t.png").At(0, 0)[3], 0);
    EXPECT_NE(Load(out_ / "t.png").At(1, 0)[3], 0);
}

TEST_F(GdalPngTest, SmoothImageryIsFiltered) {
    Pixels pixels = Image(Form::RGB, 8, 256, 256, Texture::Smooth);
    // A noise of 3 levels carries 1.6 bits per byte; unfiltered, the ramp would cost nearly 8.
    EXPECT_LT(encoder_.Encode(pixels).size(), pixels.bytes.size() / 2);
    pixels = Image(Form::RGB, 8, 256, 256, Texture::Flat);
    EXPECT_LT(encoder_.Encode(pixels).size(), pixels.bytes.size() / 200);
}

}  // namespace
}  // namespace orvo
