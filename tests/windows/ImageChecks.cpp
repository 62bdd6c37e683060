// Images through the Windows Imaging Component.
#include <cmath>
#include <fstream>

#include "platform/windows/automation/EnvelopeObject.h"
#include "platform/windows/imaging/Image.h"
#include "platform/windows/imaging/RasterFile.h"
#include "platform/windows/imaging/RasterIO.h"
#include "support/SystemPath.h"
#include "tests/windows/Checks.h"

namespace orvo::checks {
namespace {

using namespace orvo::windows;
using Kind = Pixels::Kind;

/// Every pixel differs from its neighbours.
Pixels Pattern(Kind kind, int columns, int rows, int colours) {
    Pixels pixels(kind, columns, rows);
    for (int i = 0; i < columns * rows; ++i) {
        std::uint8_t* pixel = pixels.At(i % columns, i / columns);
        const int colour = i % colours;
        pixel[0] = static_cast<std::uint8_t>(colour % 256);
        if (kind == Kind::Grey) continue;
        pixel[1] = static_cast<std::uint8_t>(colour * 7 % 256);
        pixel[2] = static_cast<std::uint8_t>(colour / 256 * 40);
        if (kind == Kind::Bgra) pixel[3] = i % 5 == 0 ? 0 : 255;
    }
    return pixels;
}

Pixels WholeOf(const std::string& path) {
    ImageSource source(path);
    return source.Read(0, 0, source.Columns(), source.Rows());
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

/// Read back after it was written.
Pixels Written(const std::string& file, ImageFormat format, const Pixels& pixels, int quality = 75) {
    WriteImage(file, format, pixels, quality);
    return WholeOf(file);
}

void CheckFormats(const Folder& folder) {
    for (const auto& [format, name] :
         {std::pair{ImageFormat::Png, "PNG"}, std::pair{ImageFormat::Tiff, "TIFF"},
          std::pair{ImageFormat::Bmp, "BMP"}, std::pair{ImageFormat::Gif, "GIF"}}) {
        for (const Kind kind : {Kind::Grey, Kind::Bgr, Kind::Bgra}) {
            Pixels pixels = Pattern(kind, 13, 7, 60);
            if (kind == Kind::Bgra)  // what is transparent has no colour that counts
                for (int i = 0; i < 13 * 7; i += 5)
                    std::fill_n(pixels.At(i % 13, i / 13), 3, std::uint8_t{0});
            const Pixels read = Written(folder.File("a"), format, pixels);
            Check(LargestDifference(read, pixels) == 0, name + std::to_string(static_cast<int>(kind)));
        }
        Equal(ImageSource(folder.File("a")).FormatName(), name);
    }
    Pixels smooth(Kind::Bgr, 64, 64);
    for (int i = 0; i < 64 * 64; ++i)
        smooth.At(i % 64, i / 64)[1] = static_cast<std::uint8_t>(i % 64 * 2 + i / 64);
    Check(LargestDifference(Written(folder.File("a"), ImageFormat::Jpeg, smooth, 95), smooth) < 24);
    const Pixels many = Pattern(Kind::Bgr, 40, 30, 1200);
    Check(LargestDifference(Written(folder.File("a"), ImageFormat::Gif, many), many) < 64,
          "1200 colours brought down to 256");
    for (const ImageFormat format : {ImageFormat::Png, ImageFormat::Gif}) {
        Pixels read = Written(folder.File("a"), format, Pattern(Kind::Bgra, 10, 10, 100));
        Check(read.kind == Kind::Bgra && read.At(0, 0)[3] == 0 && read.At(1, 0)[3] == 255, "transparency");
    }
}

/// A layer of 30 × 20 cells of 2 × 2 map units, its upper left corner at (100, 500).
void WriteSource(const Folder& folder) {
    WriteImage(folder.File("quelle ☕.png"), ImageFormat::Png, Pattern(Kind::Bgr, 30, 20, 600), 75);
    std::ofstream(DiskPath(folder.File("quelle ☕.pgw"))) << "2.0\n0\n0\n-2.0\n101.0\n499.0\n";
}

std::shared_ptr<IEnvelope> Box(double xMin, double yMin, double xMax, double yMax) {
    auto box = NewEnvelope();
    box->XMin(xMin), box->XMax(xMax), box->YMax(yMax), box->YMin(yMin);
    return box;
}

void CheckLayer(const Folder& folder) {
    const auto layer = OpenRasterFile(folder.File("quelle ☕.png"));
    Equal(layer->Raster()->Width(), 30);
    Equal(layer->Raster()->MeanCellSize().Y, 2.0);
    Equal(layer->Raster()->RasterDataset()->FormatName(), "PNG");
    Check(layer->Extent()->XMin() == 100 && layer->Extent()->YMax() == 500 && layer->Extent()->YMin() == 460);
    WriteImage(folder.File("bare.bmp"), ImageFormat::Bmp, Pattern(Kind::Bgr, 4, 3, 12), 75);
    Equal(OpenRasterFile(folder.File("bare.bmp"))->Extent()->YMax(), 3.0);
    std::ofstream(DiskPath(folder.File("bare.bpw"))) << "2.0\n0.1\n0.1\n-2.0\n1\n1\n";
    Fails(5, "bare.bpw", [&] { OpenRasterFile(folder.File("bare.bmp")); });
    std::ofstream(DiskPath(folder.File("bad.png"))) << "no image";
    Fails(57, "bad.png", [&] { OpenRasterFile(folder.File("bad.png")); });
    Fails(53, "none.png", [&] { OpenRasterFile(folder.File("none.png")); });
}

void CheckExport(const Folder& folder) {
    const auto layer = OpenRasterFile(folder.File("quelle ☕.png"));
    const auto rasters = NewRasterIO();
    std::string reason;
    const auto write = [&](const char* name, const IEnvelope& part, Long width, Long height) {
        return rasters->ExportRasterWindow(*layer, folder.File(name), 75, part, width, height, reason);
    };
    const auto whole = Box(100, 460, 160, 500);
    ImageSource source(folder.File("quelle ☕.png"));
    Equal(write("t1.png", *Box(110, 480, 130, 492), 10, 6), folder.File("t1.png"));
    Equal(LargestDifference(WholeOf(folder.File("t1.png")), source.Read(5, 4, 10, 6)), 0);
    Equal(write("t2.sid", *whole, 30, 20), folder.File("t2.tif"));
    Equal(LargestDifference(WholeOf(folder.File("t2.tif")), source.Read(0, 0, 30, 20)), 0);
    // Even where the source is even.
    Pixels flat(Kind::Grey, 8, 8);
    std::fill_n(flat.At(0, 0), 64, std::uint8_t{99});
    WriteImage(folder.File("flat.png"), ImageFormat::Png, flat, 75);
    rasters->ExportRasterWindow(*OpenRasterFile(folder.File("flat.png")), folder.File("t4.png"), 0,
                                *Box(0.3, 0.7, 6.1, 7.9), 11, 3, reason);
    Pixels resampled = WholeOf(folder.File("t4.png"));
    Check(resampled.columns == 11 && resampled.At(10, 2)[0] == 99 && resampled.At(0, 0)[0] == 99);

    const auto entries = folder.Entries();
    Equal(write("nowhere\\t.png", *whole, 30, 20), "");
    Equal(write("t5.png", *Box(0, 0, 10, 10), 5, 5), "");
    Check(reason.find("no area") != std::string::npos, reason);
    Equal(write("t6.png", *whole, 0, 5), "");
    Equal(folder.Entries(), entries);
}

void CheckCut(const Folder& folder) {
    const auto rasters = NewRasterIO();
    std::string reason;
    PixelWindow window{25, 15, 10, 10};
    Check(rasters->CutWindow(folder.File("quelle ☕.png"), window, folder.File("cut.tif"), reason), reason);
    Check(window == PixelWindow{25, 15, 5, 5}, "cut back to the raster");
    ImageSource source(folder.File("quelle ☕.png"));
    Equal(LargestDifference(WholeOf(folder.File("cut.tif")), source.Read(25, 15, 5, 5)), 0);
    window = {30, 0, 5, 5};
    Check(!rasters->CutWindow(folder.File("quelle ☕.png"), window, folder.File("no.tif"), reason));
}

}  // namespace

void CheckImages() {
    const Folder folder(u8"Orvo Bilder ☕");
    CheckFormats(folder);
    WriteSource(folder);
    CheckLayer(folder);
    CheckExport(folder);
    CheckCut(folder);
}

}  // namespace orvo::checks
