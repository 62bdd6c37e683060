#include "platform/gdal/RasterIO.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/FailureInFlight.h"
#include "platform/RuntimeError.h"
#include "platform/files/PartFile.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/FileInMemory.h"
#include "platform/gdal/LayerEncoder.h"
#include "platform/gdal/NativeTiff.h"
#include "platform/gdal/OrderedRows.h"
#include "platform/gdal/Pieces.h"
#include "platform/gdal/RasterLayer.h"
#include "platform/gdal/SourceOptions.h"
#include "platform/gdal/Startup.h"
#include "platform/raster/ImageFormat.h"
#include "support/SystemPath.h"

namespace orvo::gdal {
namespace {

void Write(const std::string& target, std::span<const unsigned char> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (const std::error_code failed = files::WriteWhole(SystemPath(target), text))
        throw RuntimeError(static_cast<Long>(Fault::PathFileAccess), failed.message());
}

class RasterIO final : public IRasterIO {
  public:
    RasterIO() { Start(); }
    std::string ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile, Integer quality,
                                   const IEnvelope& envelope, Long width, Long height,
                                   std::string& reason) override;
    bool CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                   std::string& reason) override;
    std::optional<ImageLayout> LayoutOf(const std::string& file) override;
    std::string CheckImage(const std::string& file, Long width, Long height) override;

  private:
    LayerEncoder& Use(IRasterLayer& layer);
    GDALDataset& OpenSource(const std::string& sourceFile);

    std::unique_ptr<LayerEncoder> layer_;
    std::string sourceFile_;
    GDALDatasetUniquePtr source_;
    OrderedRows sourceRows_;
};

LayerEncoder& RasterIO::Use(IRasterLayer& layer) {
    auto* const own = dynamic_cast<RasterLayer*>(&layer);
    if (own == nullptr) throw RuntimeError(Fault::TypeMismatch, "the layer comes from another library");
    if (!layer_ || &layer_->Layer() != own)
        layer_ =
            std::make_unique<LayerEncoder>(std::static_pointer_cast<RasterLayer>(own->shared_from_this()));
    return *layer_;
}

std::string RasterIO::ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile, Integer quality,
                                         const IEnvelope& envelope, Long width, Long height,
                                         std::string& reason) {
    try {
        LayerEncoder& source = Use(layer);
        const raster::TargetName name = raster::SplitName(targetFile);
        const PictureFormat format = raster::FormatOf(name.extension);
        std::string target = format ? targetFile : name.stem + ".tif";
        RasterLayer& own = source.Layer();
        const TileWindow window =
            raster::WindowOf(own.GeoTransform(), own.Width(), own.Height(), envelope, width, height);
        Write(target, source.Encode(window, format, raster::QualityOf(quality)));
        return target;
    } catch (...) {
        reason = FailureInFlight().Description();
        return {};
    }
}

GDALDataset& RasterIO::OpenSource(const std::string& sourceFile) {
    if (source_ && sourceFile_ == sourceFile) return *source_;
    const ErrorCapture errors;
    source_.reset(GDALDataset::Open(SystemPath(sourceFile).c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR,
                                    nullptr, kSourceOptions));
    if (!source_ || source_->GetRasterCount() == 0) {
        source_.reset();
        throw RuntimeError(Fault::FileNotFound, errors.Reason(sourceFile + " holds no image"));
    }
    sourceFile_ = sourceFile;
    sourceRows_.Restart();
    return *source_;
}

bool RasterIO::CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                         std::string& reason) {
    try {
        GDALDataset& source = OpenSource(sourceFile);
        if (!raster::CutBack(window, source.GetRasterXSize(), source.GetRasterYSize())) {
            throw RuntimeError(Fault::InvalidProcedureCall, "the window misses the image");
        }
        const TileWindow cells = ExactWindow(window.column, window.row, window.width, window.height);
        ReserveBlockCache(source, cells);
        sourceRows_.Reach(source, sourceFile, window.row);
        const FileInMemory file;
        CopyAsTiff(source, cells, Place::Forget, file);
        Write(tiffFile, file.Bytes());
        return true;
    } catch (...) {
        source_.reset();  // it may hold cells that it never read
        reason = FailureInFlight().Description();
        return false;
    }
}

std::optional<ImageLayout> RasterIO::LayoutOf(const std::string& file) {
    const ErrorCapture ignored;
    const GDALDatasetUniquePtr image(GDALDataset::Open(SystemPath(file).c_str(), GDAL_OF_RASTER));
    if (!image || image->GetRasterCount() == 0) return std::nullopt;
    GDALRasterBand& first = *image->GetRasterBand(1);
    return ImageLayout{image->GetRasterXSize(), image->GetRasterYSize(), image->GetRasterCount(),
                       first.GetColorTable() != nullptr, first.GetColorInterpretation() == GCI_CyanBand};
}

std::string RasterIO::CheckImage(const std::string& file, Long width, Long height) {
    const std::string extension = raster::SplitName(file).extension;
    constexpr std::array kOthers = {"webp", "jp2", "j2k"};
    if (!raster::FormatOf(extension) && std::ranges::find(kOthers, extension) == kOthers.end()) return {};
    const ErrorCapture errors;
    const GDALDatasetUniquePtr image(
        GDALDataset::Open(SystemPath(file).c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
    if (!image || image->GetRasterCount() == 0) return errors.Reason("no driver takes it");
    if (image->GetRasterXSize() != width || image->GetRasterYSize() != height)
        return std::to_string(image->GetRasterXSize()) + " x " + std::to_string(image->GetRasterYSize()) +
               " pixels instead of " + std::to_string(width) + " x " + std::to_string(height);
    std::vector<unsigned char> cells;
    ForEachPiece(*image, [&](const TileWindow& piece) {
        cells.resize(static_cast<std::size_t>(piece.columns) * static_cast<std::size_t>(piece.rows));
        for (int band = 1; band <= image->GetRasterCount(); ++band) {
            if (image->GetRasterBand(band)->RasterIO(
                    GF_Read, static_cast<int>(piece.left), static_cast<int>(piece.top), piece.columns,
                    piece.rows, cells.data(), piece.columns, piece.rows, GDT_Byte, 0, 0, nullptr) != CE_None)
                return;
        }
    });
    return errors.Reason("");
}

}  // namespace

std::shared_ptr<IRasterIO> NewRasterIO() {
    return std::make_shared<RasterIO>();
}

}  // namespace orvo::gdal
