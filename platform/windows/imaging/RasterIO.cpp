#include "platform/windows/imaging/RasterIO.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/FailureInFlight.h"
#include "platform/files/PartFile.h"
#include "platform/raster/TileWindow.h"
#include "platform/windows/imaging/Image.h"
#include "platform/windows/imaging/Resample.h"
#include "support/SystemPath.h"

namespace orvo::windows {
namespace {

namespace fs = std::filesystem;

/// The part of an image that lies inside an envelope of its layer.
raster::TileWindow WindowOf(IRasterLayer& layer, const ImageSource& image, const IEnvelope& envelope,
                            Long width, Long height) {
    const auto extent = layer.Extent();
    const IEnvelope& whole = Object(extent);
    return raster::WindowOf(
        {whole.XMin(), whole.Width() / image.Columns(), 0, whole.YMax(), 0, -whole.Height() / image.Rows()},
        image.Columns(), image.Rows(), envelope, width, height);
}

class RasterIO final : public IRasterIO {
  public:
    std::string ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile, Integer quality,
                                   const IEnvelope& envelope, Long width, Long height,
                                   std::string& reason) override;
    bool CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                   std::string& reason) override;
    std::optional<ImageLayout> LayoutOf(const std::string& file) override;
    std::string CheckImage(const std::string& file, Long width, Long height) override;

  private:
    ImageSource& Source(const std::string& path) {
        if (!source_ || sourcePath_ != path) {
            source_.reset();
            source_.emplace(path);
            sourcePath_ = path;
        }
        return *source_;
    }
    std::optional<ImageSource> source_;
    std::string sourcePath_;
};

std::string RasterIO::ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile, Integer quality,
                                         const IEnvelope& envelope, Long width, Long height,
                                         std::string& reason) {
    try {
        ImageSource& source = Source(layer.FilePath());
        const raster::TileWindow window = WindowOf(layer, source, envelope, width, height);
        const raster::TargetName name = raster::SplitName(targetFile);
        const auto format = raster::FormatOf(name.extension);
        std::string path = format ? targetFile : name.stem + ".tif";
        const fs::path target = DiskPath(path);
        std::error_code failed;
        files::PartFile part(target.parent_path(), PathText(target.extension()), failed);
        if (!failed) {
            WriteImage(PathText(part.Path()), format.value_or(ImageFormat::Tiff), ReadWindow(source, window),
                       raster::QualityOf(quality));
            failed = part.MoveTo(target);
        }
        if (failed) reason = failed.message();
        return failed ? std::string() : path;
    } catch (...) {
        reason = FailureInFlight().Description();
    }
    return {};
}

bool RasterIO::CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                         std::string& reason) {
    try {
        ImageSource& source = Source(sourceFile);
        if (!raster::CutBack(window, source.Columns(), source.Rows()))
            throw RuntimeError(Fault::InvalidProcedureCall, "the window misses the image");
        WriteImage(tiffFile, ImageFormat::Tiff,
                   source.Read(window.column, window.row, window.width, window.height), 0);
        return true;
    } catch (...) {
        reason = FailureInFlight().Description();
    }
    return false;
}

/// Palettes and inks are colours once they are read.
std::optional<ImageLayout> RasterIO::LayoutOf(const std::string& file) {
    try {
        ImageSource image(file);
        return ImageLayout{image.Columns(), image.Rows(),
                           static_cast<int>(image.Read(0, 0, 1, 1).SampleCount())};
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

std::string RasterIO::CheckImage(const std::string& file, Long width, Long height) {
    if (!raster::FormatOf(raster::SplitName(file).extension)) return {};
    try {
        ImageSource image(file);
        if (image.Columns() != width || image.Rows() != height)
            return std::to_string(image.Columns()) + " x " + std::to_string(image.Rows()) +
                   " pixels instead of " + std::to_string(width) + " x " + std::to_string(height);
        image.Read(0, 0, image.Columns(), image.Rows());
        return {};
    } catch (const RuntimeError& failure) {
        return failure.Description();
    }
}

}  // namespace

std::shared_ptr<IRasterIO> NewRasterIO() {
    return std::make_shared<RasterIO>();
}

}  // namespace orvo::windows
