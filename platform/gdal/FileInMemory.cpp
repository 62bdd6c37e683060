#include "platform/gdal/FileInMemory.h"

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <algorithm>
#include <atomic>

#include "platform/RuntimeError.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/ScopedOption.h"

namespace orvo::gdal {
namespace {

[[noreturn]] void Fail(const ErrorCapture& errors) {
    throw RuntimeError(static_cast<Long>(Fault::AutomationError),
                       errors.Reason("the raster library cannot write this image"));
}

GDALDriver& Driver(const char* name) {
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName(name);
    if (driver == nullptr) {
        throw RuntimeError(Fault::CannotCreateObject,
                           std::string("the raster library was built without ") + name);
    }
    return *driver;
}

/// Greys count as a palette of their own for formats that know nothing else.
GDALColorTable TableOf(const Palette& palette) {
    GDALColorTable table;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const GDALColorEntry entry{palette[i].red, palette[i].green, palette[i].blue, palette[i].alpha};
        table.SetColorEntry(static_cast<int>(i), &entry);
    }
    return table;
}

void Fill(GDALDataset& dataset, const Pixels& pixels, const ErrorCapture& errors) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): a write only reads them.
    auto* const bytes = const_cast<unsigned char*>(pixels.bytes.data());
    if (dataset.RasterIO(GF_Write, 0, 0, pixels.width, pixels.height, bytes, pixels.width, pixels.height,
                         GDT_Byte, pixels.Channels(), nullptr, pixels.Channels(),
                         static_cast<GSpacing>(pixels.RowBytes()), 1, nullptr) != CE_None) {
        Fail(errors);
    }
}

/// An open dataset of the image's size, with its palette and pixels.
GDALDatasetUniquePtr Create(const char* driver, const std::string& name, const Pixels& pixels,
                            CSLConstList options, const ErrorCapture& errors) {
    GDALDatasetUniquePtr dataset(Driver(driver).Create(name.c_str(), pixels.width, pixels.height,
                                                       pixels.Channels(), GDT_Byte, options));
    if (!dataset) Fail(errors);
    if (pixels.form == Form::Indexed) {
        GDALColorTable table = TableOf(pixels.palette);
        dataset->GetRasterBand(1)->SetColorTable(&table);
    }
    if (HasAlpha(pixels.form))
        dataset->GetRasterBand(pixels.Channels())->SetColorInterpretation(GCI_AlphaBand);
    Fill(*dataset, pixels, errors);
    return dataset;
}

/// Closing writes what is left.
void Close(GDALDatasetUniquePtr dataset, const ErrorCapture& errors) {
    dataset->FlushCache(true);
    dataset.reset();
    if (errors.Failed()) Fail(errors);
}

}  // namespace

FileInMemory::FileInMemory() {
    static std::atomic<unsigned> counter{0};
    name_ = "/vsimem/orvo-" + std::to_string(++counter) + ".image";
}

FileInMemory::~FileInMemory() {
    VSIUnlink(name_.c_str());
}

std::span<const unsigned char> FileInMemory::Bytes() const {
    vsi_l_offset size = 0;
    const unsigned char* const bytes = VSIGetMemFileBuffer(name_.c_str(), &size, FALSE);
    if (bytes == nullptr || size == 0) {
        throw RuntimeError(static_cast<Long>(Fault::AutomationError), "the raster library wrote nothing");
    }
    return {bytes, static_cast<std::size_t>(size)};
}

std::unique_ptr<GDALDataset> DatasetOf(const Pixels& pixels) {
    const ErrorCapture errors;
    std::unique_ptr<GDALDataset> image(Create("MEM", "", pixels, nullptr, errors).release());
    const bool colours = pixels.form == Form::RGB || pixels.form == Form::RGBA;
    for (int i = 0; i < (colours ? 3 : 1) && pixels.form != Form::Indexed; ++i)
        image->GetRasterBand(i + 1)->SetColorInterpretation(
            colours ? static_cast<GDALColorInterp>(GCI_RedBand + i) : GCI_GrayIndex);
    return image;
}

void WriteGif(const Pixels& indexed, const FileInMemory& file) {
    const NoSideFiles noSideFiles;
    const ErrorCapture errors;
    const auto image = Create("MEM", "", indexed, nullptr, errors);
    const auto hidden = std::find_if(indexed.palette.begin(), indexed.palette.end(),
                                     [](const Colour& colour) { return colour.alpha == 0; });
    if (hidden != indexed.palette.end()) {
        image->GetRasterBand(1)->SetNoDataValue(static_cast<double>(hidden - indexed.palette.begin()));
    }
    CPLStringList options;
    options.SetNameValue("INTERLACING", "NO");
    GDALDatasetUniquePtr gif(
        Driver("GIF").CreateCopy(file.Name().c_str(), image.get(), FALSE, options.List(), nullptr, nullptr));
    if (!gif) Fail(errors);
    Close(std::move(gif), errors);
}

void WriteBmp(const Pixels& pixels, const FileInMemory& file) {
    const NoSideFiles noSideFiles;
    const ErrorCapture errors;
    Close(Create("BMP", file.Name(), pixels, nullptr, errors), errors);
}

void WriteTiff(const Pixels& pixels, const FileInMemory& file) {
    const NoSideFiles noSideFiles;
    const ErrorCapture errors;
    CPLStringList options;
    const bool colour = pixels.form == Form::RGB || pixels.form == Form::RGBA;
    if (pixels.form == Form::Indexed) {
        options.SetNameValue("PHOTOMETRIC", "PALETTE");
    } else {
        options.SetNameValue("PHOTOMETRIC", colour ? "RGB" : "MINISBLACK");
    }
    if (HasAlpha(pixels.form)) options.SetNameValue("ALPHA", "YES");
    Close(Create("GTiff", file.Name(), pixels, options.List(), errors), errors);
}

}  // namespace orvo::gdal
