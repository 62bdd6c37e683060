#include "tiling/raster/TileMaker.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/FailureInFlight.h"
#include "platform/files/PartFile.h"
#include "platform/gdal/DecoderThreads.h"
#include "platform/gdal/ImageComparison.h"
#include "platform/gdal/RasterIO.h"
#include "platform/raster/ImageFormat.h"
#include "platform/utility/Converter.h"
#include "support/SystemPath.h"
#include "support/Text.h"
#include "tiling/Ahead.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"
#include "tiling/output/Rectangles.h"
#include "tiling/raster/Notices.h"

namespace orvo::tiling {
namespace {

void Write(const std::string& path, const std::string& bytes) {
    if (const auto failed = files::WriteWhole(SystemPath(path), bytes))
        throw RuntimeError(static_cast<Long>(Fault::PathFileAccess), failed.message());
}

/// Work that fails with a reason in place of an exception.
template <class Work>
bool Succeeds(std::string& reason, Work&& work) {
    try {
        work();
        return true;
    } catch (...) {
        reason = FailureInFlight().Description();
        return false;
    }
}

constexpr const char* kMissesLayer = "the window misses the layer";

bool Holds16Bits(const std::string& extension) {
    return extension == "png";
}

/// Formats of 8 bits, or 16, and four bands at most.
bool IsPictureFormat(const std::string& extension) {
    constexpr std::array<std::string_view, 5> kPictures = {"png", "jpg", "gif", "bmp", "webp"};
    return std::ranges::find(kPictures, extension) != kPictures.end();
}

bool HasNoLosses(const std::string& extension) {
    constexpr std::array<std::string_view, 4> kExact = {"png", "tif", "tiff", "bmp"};
    return std::ranges::find(kExact, extension) != kExact.end();
}

/// Of all bands.
GDALDataType TypeOf(gdal::RasterLayer& layer) {
    GDALDataType type = GDT_Byte;
    for (int band = 1; band <= layer.BandCount(); ++band)
        type = GDALDataTypeUnion(type, layer.Dataset().GetRasterBand(band)->GetRasterDataType());
    return type;
}

/// Programs that are known to bring cells to whole numbers of 8 or 16 bits, and to drop bands.
void RefuseProgram(gdal::RasterLayer& layer, const std::string& program) {
    const std::string known = utility::KnownConverter(program);
    if (known != "convert" && known != "magick" && known != "gm") return;
    const GDALDataType type = TypeOf(layer);
    const std::string remedy =
        "; take --converter gdal_translate, or leave --converter out: every format of GDAL is written "
        "without";
    if (type != GDT_Byte && type != GDT_UInt16)
        throw UsageError("--converter " + program + " does not keep cells of type " +
                         GDALGetDataTypeName(type) + remedy);
    if (layer.BandCount() > 4)
        throw UsageError("--converter " + program + " does not keep " + std::to_string(layer.BandCount()) +
                         " bands" + remedy + ", or choose some with --bands");
}

/// Shares the job's threads: where the library decodes on its own, it gets half of them and one, for who
/// reads waits meanwhile; never more than the job's in sum. @return threads that make tiles ahead
int ShareThreads(gdal::RasterLayer& layer, int jobs) {
    const int threads = ThreadsOf(jobs);
    const int decoders = gdal::DecodesOnThreads(layer.Dataset()) ? std::min(threads, threads / 2 + 1) : 1;
    gdal::SetDecoderThreads(decoders);
    return ThreadsAhead(threads + 1 - decoders);
}

/// The cells of one window for one conversion.
class Conversion final : public IRasterIO {
  public:
    Conversion(TileMaker& maker, const raster::TileWindow& window, std::string tiff)
        : maker_(maker), window_(window), tiff_(std::move(tiff)), files_(gdal::NewRasterIO()) {}

    std::string ExportRasterWindow(IRasterLayer&, const std::string&, Integer, const IEnvelope&, Long, Long,
                                   std::string&) override {
        return {};
    }
    bool CutWindow(const std::string&, PixelWindow&, const std::string& tiffFile,
                   std::string& reason) override {
        if (!(window_.left < window_.right && window_.top < window_.bottom)) {
            reason = kMissesLayer;
            return false;
        }
        return Succeeds(reason, [&] { Write(tiffFile, std::exchange(tiff_, {})); });
    }
    std::optional<ImageLayout> LayoutOf(const std::string& file) override {
        source_ = file;
        return files_->LayoutOf(file);
    }
    std::string CheckImage(const std::string& file, Long width, Long height) override {
        return maker_.Judge(*files_, source_, file, width, height);
    }

  private:
    TileMaker& maker_;
    raster::TileWindow window_;
    std::string tiff_;
    std::shared_ptr<IRasterIO> files_;
    std::string source_;
};

}  // namespace

TileMaker::TileMaker(std::shared_ptr<gdal::RasterLayer> layer, const RasterJob& job, const RasterGrid& grid)
    : layer_(std::move(layer)),
      job_(job),
      threadsAhead_(ShareThreads(*layer_, job.jobs)),
      extension_(FormatOf(job).extension),
      files_(gdal::NewRasterIO()) {
    gdal::TileStyle style;
    style.format = FormatOf(job);
    style.quality = job.quality;
    style.options = job.options;
    style.place = job.worldFiles;
    style.effort = job.effort;
    if (job.range) style.range = gdal::Range{job.range->first, job.range->second};
    const auto make = [&](const gdal::TileStyle& wanted) {
        try {
            return std::make_unique<gdal::TileWriter>(layer_, wanted, grid.TileWidth(), grid.TileHeight());
        } catch (const RuntimeError& failure) {
            throw UsageError("--format " + job.format + ": " + failure.Description() +
                             "; choose another --format, or other --bands");
        }
    };
    if (job.converter.empty()) {
        if (!style.options.empty()) CheckOptions(style);
        writer_ = make(style);
        needsPlace_ = !writer_->SaysPlace();
        RefuseChanges(writer_->Treats());
        return;
    }
    if (!style.options.empty())
        throw UsageError("--co has no meaning with --converter: the program writes the tiles");
    RefuseProgram(*layer_, job.converter);
    SetUpSource(style, make);
    if (!style.format.driver.empty()) {
        std::string ignored;  // then a tile whose conversion fails is not there
        Succeeds(ignored, [&] { writer_ = make(style); });
    }
}

void TileMaker::CheckOptions(const gdal::TileStyle& style) {
    try {
        gdal::CheckOptions(style.format, style.options);
    } catch (const RuntimeError& failure) {
        throw UsageError("--co: " + failure.Description());
    }
}

/// A converter gets the layer's own cells, or a picture of them where its format holds no others.
void TileMaker::SetUpSource(const gdal::TileStyle& style,
                            const std::function<WriterPtr(const gdal::TileStyle&)>& make) {
    gdal::TileStyle tiff = style;
    tiff.format = {"GTiff", "tif"};
    tiff.place = true;
    const GDALDataType type = TypeOf(*layer_);
    const bool fits = type == GDT_Byte || (type == GDT_UInt16 && Holds16Bits(extension_));
    if (IsPictureFormat(extension_) && (!fits || layer_->BandCount() > 4)) {
        const auto known = raster::FormatOf(extension_);
        gdal::Holds holds = known ? gdal::HoldsOf(known) : gdal::Holds{.transparency = true};
        holds.sixteenBits = false;
        tiff.picture = holds;
    }
    source_ = make(tiff);
    RefuseChanges(source_->Treats());
}

void TileMaker::RefuseChanges(const gdal::Treatment& treatment) {
    if (job_.values != Values::Refuse) return;
    const std::string remedy = "; choose another --format, for example tif, or --values stretch";
    if (treatment.stretched)
        throw UsageError("--format " + job_.format + " does not hold cells of type " +
                         GDALGetDataTypeName(TypeOf(*layer_)) + ", and --values refuse lets none change" +
                         remedy);
    if (treatment.picture && layer_->BandCount() > 4)
        throw UsageError("--format " + job_.format + " does not hold " + std::to_string(layer_->BandCount()) +
                         " bands, and --values refuse lets none be left out" + remedy);
    if (treatment.losses)
        throw UsageError("--format " + job_.format +
                         " changes values where it compresses, and --values refuse lets none change" +
                         remedy + ", or --co options without losses");
}

std::vector<std::string> TileMaker::Notices() {
    return FormatNotices(*layer_, job_, source_ ? *source_ : *writer_, extension_);
}

std::string TileMaker::StretchSaid() {
    return StretchNotice(source_ ? *source_ : *writer_);
}

void TileMaker::Expect(const std::string& name, bool conversionFailed, Files ready, bool converted) {
    expected_ = name;
    conversionFailed_ = conversionFailed;
    ready_ = std::move(ready);
    converted_ = converted;
}

MadeTile TileMaker::Take(const std::string& path) {
    const auto found = made_.find(path);
    if (found == made_.end()) return {};
    MadeTile made = std::move(found->second);
    made_.erase(found);
    return made;
}

void TileMaker::Rename(const std::string& from, const std::string& to) {
    if (auto node = made_.extract(from)) {
        node.key() = to;
        made_.insert(std::move(node));
    }
}

bool TileMaker::IsBlank(const raster::TileWindow& window) {
    try {
        return (writer_ ? *writer_ : *source_).IsBlank(window);
    } catch (const RuntimeError&) {
        return false;
    }
}

TileMaker::Files TileMaker::Begin(const raster::TileWindow& window, const std::string& name) {
    return [this, tile = writer_->Read(window, name)] { return writer_->Write(*tile); };
}

std::shared_ptr<IRasterIO> TileMaker::BeginConversion(const raster::TileWindow& window) {
    return std::make_shared<Conversion>(*this, window, Source(window));
}

std::int64_t TileMaker::BytesOfPixel() const {
    constexpr std::int64_t kPicture = 4;
    const std::int64_t own = std::int64_t{GDALGetDataTypeSizeBytes(TypeOf(*layer_))} * layer_->BandCount();
    return std::max(kPicture, own);
}

/// With a converter the first way is a TIFF, which is converted next; without one, or after a failed
/// conversion, the format itself.
std::string TileMaker::ExportRasterWindow(IRasterLayer& /*layer*/, const std::string& targetFile,
                                          Integer /*quality*/, const IEnvelope& envelope, Long width,
                                          Long height, std::string& reason) {
    const raster::TileWindow window = block_->PixelsOf(EdgesOf(envelope), width, height);
    const bool asTiff = source_ && (!conversionFailed_ || !writer_);
    const std::string target = asTiff ? raster::SplitName(targetFile).stem + ".tif" : targetFile;
    const bool written = Succeeds(reason, [&] {
        MadeTile made{window, {}};
        if (asTiff) {
            Write(target, converted_ ? "" : Source(window));
        } else {
            const Files ready = std::exchange(ready_, {});
            made.others = ready ? ready() : writer_->Make(window, expected_);
            Write(target, made.others.front().bytes);
            made.others.erase(made.others.begin());
        }
        made_[target] = std::move(made);
    });
    return written ? target : std::string();
}

bool TileMaker::CutWindow(const std::string& /*sourceFile*/, PixelWindow& window, const std::string& tiffFile,
                          std::string& reason) {
    const raster::TileWindow pixels = block_->PixelsOf(window);
    if (!(pixels.left < pixels.right && pixels.top < pixels.bottom)) {
        reason = kMissesLayer;
        return false;
    }
    made_[kConverted] = {pixels, {}};
    if (!job_.name.empty()) {
        PixelWindow shifted{static_cast<Long>(pixels.left), static_cast<Long>(pixels.top), pixels.columns,
                            pixels.rows};
        return files_->CutWindow(job_.name, shifted, tiffFile, reason);
    }
    return Succeeds(reason, [&] { Write(tiffFile, Source(pixels)); });
}

std::string TileMaker::Source(const raster::TileWindow& window) {
    if (source_->Treats().picture) return source_->Make(window, "source.tif").front().bytes;
    return source_->MakeTiff(window);
}

std::optional<ImageLayout> TileMaker::LayoutOf(const std::string& file) {
    lastSource_ = file;
    return files_->LayoutOf(file);
}

std::string TileMaker::CheckImage(const std::string& file, Long width, Long height) {
    return Judge(*files_, lastSource_, file, width, height);
}

/// Values are compared until a program has kept those of one tile.
std::string TileMaker::Judge(IRasterIO& files, const std::string& source, const std::string& file, Long width,
                             Long height) {
    std::string reason = files.CheckImage(file, width, height);
    if (!reason.empty() || verified_ || !HasNoLosses(raster::SplitName(file).extension)) return reason;
    reason = gdal::DifferenceOfImages(SystemPath(source), SystemPath(file));
    if (reason.empty()) verified_ = true;
    return reason;
}

}  // namespace orvo::tiling
