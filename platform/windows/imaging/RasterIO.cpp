#include "platform/windows/imaging/RasterIO.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "platform/windows/imaging/Image.h"
#include "platform/windows/imaging/Resample.h"
#include "support/FileReplace.h"
#include "support/SystemPath.h"
#include "support/Text.h"

namespace orvo::windows {
namespace {

namespace fs = std::filesystem;

constexpr int kDefaultQuality = 75;
constexpr double kSnap = 1e-6;  // cells

double Snap(double cells) {
    const double whole = std::round(cells);
    return std::abs(cells - whole) <= kSnap ? whole : cells;
}

/// The format that a file's extension asks for; none for another.
std::optional<ImageFormat> FormatOf(const std::string& extension) {
    if (extension == "png") return ImageFormat::Png;
    if (extension == "jpg" || extension == "jpeg") return ImageFormat::Jpeg;
    if (extension == "gif") return ImageFormat::Gif;
    if (extension == "bmp") return ImageFormat::Bmp;
    if (extension == "tif" || extension == "tiff") return ImageFormat::Tiff;
    return std::nullopt;
}

/// The part of an image, in cells, that lies inside an envelope of its layer.
CellWindow WindowOf(IRasterLayer& layer, const ImageSource& image, const IEnvelope& envelope) {
    const auto extent = layer.Extent();
    const IEnvelope& whole = Object(extent);
    const double cellX = whole.Width() / image.Columns();
    const double cellY = whole.Height() / image.Rows();
    const CellWindow window{std::max(Snap((envelope.XMin() - whole.XMin()) / cellX), 0.0),
                            std::max(Snap((whole.YMax() - envelope.YMax()) / cellY), 0.0),
                            std::min<double>(Snap((envelope.XMax() - whole.XMin()) / cellX), image.Columns()),
                            std::min<double>(Snap((whole.YMax() - envelope.YMin()) / cellY), image.Rows())};
    if (!(window.right > window.left && window.bottom > window.top))
        throw RuntimeError(Fault::InvalidProcedureCall, "the envelope has no area on the raster");
    return window;
}

/// Removes a file unless it was given its name.
class Part {
  public:
    explicit Part(fs::path file) : file_(std::move(file)) {}
    ~Part() {
        std::error_code ignored;
        fs::remove(file_, ignored);
    }
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;
    std::string Text() const { return PathText(file_); }
    std::string CommitTo(const fs::path& target) const { return Commit(file_, target); }

  private:
    fs::path file_;
};

class RasterIO final : public IRasterIO {
  public:
    std::string ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile, Integer quality,
                                   const IEnvelope& envelope, Long width, Long height,
                                   std::string& reason) override;
    bool CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                   std::string& reason) override;

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
        if (width <= 0 || height <= 0)
            throw RuntimeError(Fault::InvalidProcedureCall, "a tile without pixels");
        ImageSource& source = Source(layer.FilePath());
        const CellWindow window = WindowOf(layer, source, envelope);
        std::string path = targetFile;
        auto format = FormatOf(LCase(AfterLast(PathText(DiskPath(path).extension()), '.')));
        if (!format) {
            format = ImageFormat::Tiff;
            path.resize(path.size() - DiskPath(path).extension().u8string().size());
            path += ".tif";
        }
        const fs::path target = DiskPath(path);
        const Part part(PartName(target));
        WriteImage(part.Text(), *format, ReadWindow(source, window, width, height),
                   quality == 0 ? kDefaultQuality : std::clamp<int>(quality, 1, 100));
        reason = part.CommitTo(target);
        return reason.empty() ? path : std::string();
    } catch (const RuntimeError& failure) {
        reason = failure.Description();
    } catch (const std::bad_alloc&) {
        reason = FaultText(Fault::OutOfMemory);
    }
    return {};
}

bool RasterIO::CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                         std::string& reason) {
    try {
        ImageSource& source = Source(sourceFile);
        const auto right =
            std::min<std::int64_t>(std::int64_t{window.column} + window.width, source.Columns());
        const auto bottom = std::min<std::int64_t>(std::int64_t{window.row} + window.height, source.Rows());
        const Long column = std::max<Long>(window.column, 0);
        const Long row = std::max<Long>(window.row, 0);
        window = {column, row, static_cast<Long>(std::max<std::int64_t>(right - column, 0)),
                  static_cast<Long>(std::max<std::int64_t>(bottom - row, 0))};
        if (window.width <= 0 || window.height <= 0)
            throw RuntimeError(Fault::InvalidProcedureCall, "the window misses the raster");
        WriteImage(tiffFile, ImageFormat::Tiff, source.Read(column, row, window.width, window.height), 0);
        return true;
    } catch (const RuntimeError& failure) {
        reason = failure.Description();
    } catch (const std::bad_alloc&) {
        reason = FaultText(Fault::OutOfMemory);
    }
    return false;
}

}  // namespace

std::shared_ptr<IRasterIO> NewRasterIO() {
    return std::make_shared<RasterIO>();
}

}  // namespace orvo::windows
