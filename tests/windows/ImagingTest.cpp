// Images through the Windows Imaging Component.
#include <gmock/gmock.h>

#include "platform/windows/Platform.h"
#include "platform/windows/automation/EnvelopeObject.h"
#include "platform/windows/imaging/Image.h"
#include "platform/windows/imaging/RasterFile.h"
#include "platform/windows/imaging/RasterIO.h"
#include "tests/Failure.h"
#include "tests/adapters/TempFolder.h"
#include "tests/windows/Self.h"

namespace orvo::windows {
namespace {

using Kind = Pixels::Kind;

/// Every pixel differs from its neighbours; every fifth is transparent where the kind has it.
Pixels Pattern(Kind kind, int columns, int rows, int colours) {
    Pixels pixels(kind, columns, rows);
    for (int i = 0; i < columns * rows; ++i) {
        std::uint8_t* pixel = pixels.At(i % columns, i / columns);
        const int colour = kind == Kind::Bgra && i % 5 == 0 ? 0 : i % colours;
        pixel[0] = static_cast<std::uint8_t>(colour % 256);
        if (kind == Kind::Grey) continue;
        pixel[1] = static_cast<std::uint8_t>(colour * 7 % 256);
        pixel[2] = static_cast<std::uint8_t>(colour / 256 * 40);
        if (kind == Kind::Bgra) pixel[3] = i % 5 == 0 ? 0 : 255;
    }
    return pixels;
}

/// Of any colour of any pixel; transparency aside.
int LargestDifference(Pixels a, Pixels b) {
    if (a.columns != b.columns || a.rows != b.rows) return 999;
    int largest = 0;
    for (int i = 0; i < a.columns * a.rows * 3; ++i) {
        const auto colour = [i](Pixels& of) {
            const std::uint8_t* pixel = of.At(i / 3 % of.columns, i / 3 / of.columns);
            return static_cast<int>(pixel[of.kind == Kind::Grey ? 0 : i % 3]);
        };
        largest = std::max(largest, std::abs(colour(a) - colour(b)));
    }
    return largest;
}

struct Imaging : testing::Test {
    Pixels WholeOf(const std::string& name) const {
        ImageSource source(folder / name);
        return source.Read(0, 0, source.Columns(), source.Rows());
    }
    /// Read back after it was written.
    Pixels Written(ImageFormat format, const Pixels& pixels, int quality = 75) const {
        WriteImage(folder / "a", format, pixels, quality);
        return WholeOf("a");
    }
    /// A layer of 30 × 20 cells of 2 × 2 map units, its upper left corner at (100, 500).
    std::shared_ptr<IRasterLayer> NewLayer() const {
        WriteImage(folder / "quelle ☕.png", ImageFormat::Png, Pattern(Kind::Bgr, 30, 20, 600), 75);
        folder.Put("quelle ☕.pgw", "2.0\n0\n0\n-2.0\n101.0\n499.0\n");
        return OpenRasterFile(folder / "quelle ☕.png");
    }
    std::string Exported(IRasterLayer& layer, const char* name, std::array<double, 4> edges, Long width,
                         Long height) {
        const auto part = NewEnvelope();
        part->XMin(edges[0]), part->XMax(edges[2]), part->YMax(edges[3]), part->YMin(edges[1]);
        return NewRasterIO()->ExportRasterWindow(layer, folder / name, 75, *part, width, height, reason);
    }
    const TempFolder folder{"Orvo Bilder ☕"};
    std::string reason;
};

TEST_F(Imaging, FormatsKeepWhatTheyCan) {
    for (const auto& [format, name] : {std::pair{ImageFormat::Png, "PNG"},
                                       {ImageFormat::Tiff, "TIFF"},
                                       {ImageFormat::Bmp, "BMP"},
                                       {ImageFormat::Gif, "GIF"}}) {
        for (const Kind kind : {Kind::Grey, Kind::Bgr, Kind::Bgra}) {
            const Pixels pixels = Pattern(kind, 13, 7, 60);
            EXPECT_EQ(LargestDifference(Written(format, pixels), pixels), 0)
                << name << static_cast<int>(kind);
        }
        EXPECT_EQ(ImageSource(folder / "a").FormatName(), name);
    }
    Pixels smooth(Kind::Bgr, 64, 64);
    for (int i = 0; i < 64 * 64; ++i)
        smooth.At(i % 64, i / 64)[1] = static_cast<std::uint8_t>(i % 64 * 2 + i / 64);
    EXPECT_LT(LargestDifference(Written(ImageFormat::Jpeg, smooth, 95), smooth), 24);
    const Pixels many = Pattern(Kind::Bgr, 40, 30, 1200);
    EXPECT_LT(LargestDifference(Written(ImageFormat::Gif, many), many), 64) << "brought down to 256 colours";
    for (const ImageFormat format : {ImageFormat::Png, ImageFormat::Gif}) {
        Pixels read = Written(format, Pattern(Kind::Bgra, 10, 10, 100));
        ASSERT_EQ(read.kind, Kind::Bgra);
        EXPECT_TRUE(read.At(0, 0)[3] == 0 && read.At(1, 0)[3] == 255);
    }
}

TEST_F(Imaging, LayersLieWhereTheirWorldFileSays) {
    WriteImage(folder / "bare.bmp", ImageFormat::Bmp, Pattern(Kind::Bgr, 4, 3, 12), 75);
    EXPECT_EQ(OpenRasterFile(folder / "bare.bmp")->Extent()->YMax(), 3.0);
    folder.Put("bare.bpw", "2.0\n0.1\n0.1\n-2.0\n1\n1\n");
    folder.Put("bad.png", "no image");
    for (const auto& [name, number] : {std::pair{"bare.bmp", 5}, {"bad.png", 57}, {"none.png", 53}})
        EXPECT_EQ(orvo::NumberOf([&] { OpenRasterFile(folder / name); }), number) << name;
}

TEST_F(Imaging, ExportCopiesWholeCellsAndResamplesOthers) {
    const auto layer = NewLayer();
    ImageSource source(folder / "quelle ☕.png");
    EXPECT_EQ(Exported(*layer, "t.sid", {110, 480, 130, 492}, 10, 6), folder / "t.tif");
    EXPECT_EQ(LargestDifference(WholeOf("t.tif"), source.Read(5, 4, 10, 6)), 0);
    // Even where the source is even.
    Pixels flat(Kind::Grey, 8, 8);
    std::fill_n(flat.At(0, 0), 64, std::uint8_t{99});
    WriteImage(folder / "flat.png", ImageFormat::Png, flat, 75);
    Exported(*OpenRasterFile(folder / "flat.png"), "t4.png", {0.3, 0.7, 6.1, 7.9}, 11, 3);
    Pixels resampled = WholeOf("t4.png");
    ASSERT_EQ(std::pair(resampled.columns, resampled.rows), std::pair(11, 3));
    EXPECT_TRUE(resampled.At(10, 2)[0] == 99 && resampled.At(0, 0)[0] == 99);
}

TEST_F(Imaging, AFailingExportOrCutLeavesNothing) {
    const auto layer = NewLayer();
    const auto names = folder.Names();
    EXPECT_EQ(Exported(*layer, "nowhere\\t.png", {100, 460, 160, 500}, 30, 20), "");
    EXPECT_EQ(Exported(*layer, "t6.png", {100, 460, 160, 500}, 0, 5), "");
    EXPECT_EQ(Exported(*layer, "t5.png", {0, 0, 10, 10}, 5, 5), "");
    EXPECT_THAT(reason, testing::HasSubstr("no area"));
    const PixelWindow outside{30, 0, 5, 5};
    std::string target = folder / "cut.tif";
    for (const auto& [program, window] :
         {std::pair<std::string, const PixelWindow*>("no-such-program", nullptr), {Self(), &outside}})
        EXPECT_FALSE(MakePlatform().newRasterConvert()->ConvertExtern(program, folder / "quelle ☕.png",
                                                                      target, 75, window, true));
    EXPECT_EQ(folder.Names(), names);
}

}  // namespace
}  // namespace orvo::windows
