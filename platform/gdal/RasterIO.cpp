#include "platform/gdal/RasterIO.h"

#include <gdal_priv.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <optional>

#include "platform/RuntimeError.h"
#include "platform/gdal/ColourTable.h"
#include "platform/gdal/FileInMemory.h"
#include "platform/gdal/JpegEncoder.h"
#include "platform/gdal/LayerReader.h"
#include "platform/gdal/Library.h"
#include "platform/gdal/NativeTiff.h"
#include "platform/gdal/PngEncoder.h"
#include "platform/gdal/RasterLayer.h"
#include "support/FileReplace.h"
#include "support/SystemPath.h"

namespace orvo::gdal {
namespace {

constexpr int kDefaultQuality = 75;

enum class Format { Png, Jpeg, Gif, Bmp, Tiff, SubstituteTiff };

/// A target file's name: everything before the dot of its extension, and the extension in lower case.
struct TargetName {
    std::string stem;
    std::string extension;
};

TargetName Split(const std::string& file) {
    const auto slash = file.find_last_of("/\\");
    const auto dot = file.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return {file, ""};
    std::string extension = file.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return {file.substr(0, dot), extension};
}

Format FormatOf(const std::string& extension) {
    if (extension == "png") return Format::Png;
    if (extension == "jpg" || extension == "jpeg") return Format::Jpeg;
    if (extension == "gif") return Format::Gif;
    if (extension == "bmp") return Format::Bmp;
    if (extension == "tif" || extension == "tiff") return Format::Tiff;
    return Format::SubstituteTiff;
}

Holds HoldsOf(Format format) {
    switch (format) {
        case Format::Png:
            return {.sixteenBits = true, .transparency = true, .palette = true};
        case Format::Gif:
        case Format::SubstituteTiff:
            return {.transparency = true, .palette = true};
        case Format::Bmp:
            return {.palette = true};
        case Format::Jpeg:
        case Format::Tiff:
            break;
    }
    return {};
}

int QualityOf(Integer quality) {
    return quality == 0 ? kDefaultQuality : std::clamp<int>(quality, 1, 100);
}

void Write(const std::string& target, std::span<const unsigned char> bytes) {
    const std::string reason = ReplaceFile(SystemPath(target), bytes);
    if (!reason.empty()) throw RuntimeError(static_cast<Long>(Fault::PathFileAccess), reason);
}

/// Why an exception came, for the contracts that answer with a reason.
std::string ReasonOf(const std::exception& failure) {
    const std::string text = failure.what();
    return text.empty() ? "unknown failure" : text;
}

/// A layer that tiles are cut from, and what was learned about it as a whole.
struct OpenLayer {
    explicit OpenLayer(std::shared_ptr<RasterLayer> from)
        : layer(std::move(from)), reader(*layer), indexer(reader) {}

    std::shared_ptr<RasterLayer> layer;
    LayerReader reader;
    Indexer indexer;
};

class RasterIO final : public IRasterIO {
  public:
    RasterIO() { Start(); }
    std::string ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile, Integer quality,
                                   const IEnvelope& envelope, Long width, Long height,
                                   std::string& reason) override;
    bool CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                   std::string& reason) override;

  private:
    OpenLayer& Use(IRasterLayer& layer);
    GDALDataset& OpenSource(const std::string& sourceFile);
    std::span<const unsigned char> Encode(OpenLayer& source, const TileWindow& window, Format format,
                                          int quality);
    std::span<const unsigned char> EncodeOnce(OpenLayer& source, const TileWindow& window, Format format,
                                              int quality);

    std::unique_ptr<OpenLayer> layer_;
    std::string sourceFile_;
    GDALDatasetUniquePtr source_;
    Pixels pixels_;
    PngEncoder png_;
    JpegEncoder jpeg_;
    std::optional<FileInMemory> file_;  // the last one that the raster library wrote
};

OpenLayer& RasterIO::Use(IRasterLayer& layer) {
    auto* const own = dynamic_cast<RasterLayer*>(&layer);
    if (own == nullptr) throw RuntimeError(Fault::TypeMismatch, "the layer comes from another library");
    if (!layer_ || layer_->layer.get() != own) {
        layer_ = std::make_unique<OpenLayer>(std::static_pointer_cast<RasterLayer>(own->shared_from_this()));
    }
    return *layer_;
}

std::span<const unsigned char> RasterIO::Encode(OpenLayer& source, const TileWindow& window, Format format,
                                                int quality) {
    for (;;) {
        try {
            ReserveBlockCache(source.layer->Dataset(), window);
            return EncodeOnce(source, window, format, quality);
        } catch (const RuntimeError& failure) {
            if (failure.Number() != static_cast<Long>(Fault::DeviceIOError) || !source.reader.Recover())
                throw;
        }
    }
}

std::span<const unsigned char> RasterIO::EncodeOnce(OpenLayer& source, const TileWindow& window,
                                                    Format format, int quality) {
    file_.emplace();
    if (format == Format::Tiff) {
        CopyAsTiff(source.layer->Dataset(), window, Place::Keep, *file_);
        return file_->Bytes();
    }
    source.reader.Read(window, HoldsOf(format), pixels_);
    if (format == Format::Png) return png_.Encode(pixels_);
    if (format == Format::Jpeg) return jpeg_.Encode(pixels_, quality);
    if (format == Format::Gif) {
        source.indexer.MakeIndexed(pixels_);
        WriteGif(pixels_, *file_);
    } else if (format == Format::Bmp) {
        WriteBmp(pixels_, *file_);
    } else {
        WriteTiff(pixels_, *file_);
    }
    return file_->Bytes();
}

std::string RasterIO::ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile, Integer quality,
                                         const IEnvelope& envelope, Long width, Long height,
                                         std::string& reason) {
    try {
        OpenLayer& source = Use(layer);
        const TargetName name = Split(targetFile);
        const Format format = FormatOf(name.extension);
        std::string target = format == Format::SubstituteTiff ? name.stem + ".tif" : targetFile;
        const TileWindow window = WindowOf(source.layer->GeoTransform(), source.layer->Width(),
                                           source.layer->Height(), envelope, width, height);
        Write(target, Encode(source, window, format, QualityOf(quality)));
        return target;
    } catch (const std::exception& failure) {
        reason = ReasonOf(failure);
        return {};
    }
}

GDALDataset& RasterIO::OpenSource(const std::string& sourceFile) {
    if (source_ && sourceFile_ == sourceFile) return *source_;
    const Complaints complaints;
    source_.reset(GDALDataset::Open(SystemPath(sourceFile).c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
    if (!source_ || source_->GetRasterCount() == 0) {
        source_.reset();
        throw RuntimeError(Fault::FileNotFound, complaints.Reason(sourceFile + " holds no image"));
    }
    sourceFile_ = sourceFile;
    return *source_;
}

/// Cuts a window back to a raster's size; false where nothing is left.
bool CutBack(PixelWindow& window, int columns, int rows) {
    const std::int64_t right = std::min<std::int64_t>(std::int64_t{window.column} + window.width, columns);
    const std::int64_t bottom = std::min<std::int64_t>(std::int64_t{window.row} + window.height, rows);
    const Long column = std::max(window.column, 0);
    const Long row = std::max(window.row, 0);
    if (right <= column || bottom <= row) return false;
    window = {column, row, static_cast<Long>(right - column), static_cast<Long>(bottom - row)};
    return true;
}

bool RasterIO::CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                         std::string& reason) {
    try {
        GDALDataset& source = OpenSource(sourceFile);
        if (!CutBack(window, source.GetRasterXSize(), source.GetRasterYSize())) {
            throw RuntimeError(Fault::InvalidProcedureCall, "the window misses the image");
        }
        const TileWindow cells = ExactWindow(window.column, window.row, window.width, window.height);
        ReserveBlockCache(source, cells);
        const FileInMemory file;
        CopyAsTiff(source, cells, Place::Forget, file);
        Write(tiffFile, file.Bytes());
        return true;
    } catch (const std::exception& failure) {
        source_.reset();  // it may hold cells that it never read
        reason = ReasonOf(failure);
        return false;
    }
}

}  // namespace

std::shared_ptr<IRasterIO> NewRasterIO() {
    return std::make_shared<RasterIO>();
}

}  // namespace orvo::gdal
