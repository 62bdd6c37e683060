// The images of a run's tiles: what the component's services write, block by block.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/RasterIO.h"
#include "platform/gdal/TileWriter.h"
#include "tiling/raster/BlockLayer.h"
#include "tiling/raster/RasterJob.h"

namespace orvo::tiling {

/// One tile's image as it was made.
struct MadeTile {
    raster::TileWindow window;           ///< what it shows, in the layer's pixels, and its own size
    std::vector<gdal::MadeFile> others;  ///< files that go with it, by their last names
};

/// Reads and writes pixels for blocks of one layer. The source is opened once, and what was learned of the
/// layer holds for all of its tiles.
class TileMaker final : public IRasterIO {
  public:
    /// Tries the format. Fails with UsageError where it holds no tile of the layer, or values that the job
    /// does not allow to change.
    TileMaker(std::shared_ptr<gdal::RasterLayer> layer, const RasterJob& job, const RasterGrid& grid);

    /// Of the tiles in the end, without dot.
    const std::string& Extension() const { return extension_; }
    /// While the component makes them: an exported "tif" would be converted in a second step.
    std::string WrittenExtension() const { return extension_ == "tif" ? "tiff" : extension_; }
    /// Whether nothing that a tile is made of says where it lies.
    bool NeedsPlace() const { return needsPlace_; }
    /// What the tiles will not keep of the source.
    std::vector<std::string> Notices();
    /// Threads that may make tiles ahead of the component; 0 for none.
    int ThreadsAhead() const { return threadsAhead_; }
    /// How cells were brought to 8 bits, known once a tile was made; empty where they were not.
    std::string StretchSaid();

    /// From now on the component asks for tiles of this block. It must outlive the calls.
    void Enter(const BlockLayer& block) { block_ = &block; }
    /// What a tile's files were made of, or the failure of that.
    using Files = std::function<std::vector<gdal::MadeFile>()>;
    /// The next export or conversion is for the tile of that name; a conversion of it may have failed.
    /// @param ready gives the files of its export, where these were made ahead; else empty
    /// @param converted whether its conversion is there: then an export is an empty file that stands for it
    void Expect(const std::string& name, bool conversionFailed, Files ready, bool converted);
    /// An image has come under a path in another way.
    void Put(const std::string& path, const raster::TileWindow& window) { made_[path] = {window, {}}; }
    /// What stands under a path that a service has written; it is forgotten here.
    MadeTile Take(const std::string& path);
    /// The file under one path goes on under another.
    void Rename(const std::string& from, const std::string& to);

    // From any thread:

    /// Whether a part of the layer shows nothing. Where that cannot be read, it is not blank: who makes the
    /// tile learns why.
    bool IsBlank(const raster::TileWindow& window);
    /// Reads a tile; what it gives makes its files, once. Fails where the source cannot be read.
    Files Begin(const raster::TileWindow& window, const std::string& name);
    /// Reads what a converter gets; what it gives serves one conversion of that window. Fails likewise.
    std::shared_ptr<IRasterIO> BeginConversion(const raster::TileWindow& window);
    /// Why a converter's image is not the source's; empty where it is.
    std::string Judge(IRasterIO& files, const std::string& source, const std::string& file, Long width,
                      Long height);
    /// As the tiles hold them, or the layer where a converter makes them.
    std::int64_t BytesOfPixel() const;

    std::string ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile, Integer quality,
                                   const IEnvelope& envelope, Long width, Long height,
                                   std::string& reason) override;
    bool CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                   std::string& reason) override;
    std::optional<ImageLayout> LayoutOf(const std::string& file) override;
    std::string CheckImage(const std::string& file, Long width, Long height) override;

    /// Under which a conversion's tile is found until it is renamed.
    static constexpr const char* kConverted = "converted";

  private:
    using WriterPtr = std::unique_ptr<gdal::TileWriter>;
    static void CheckOptions(const gdal::TileStyle& style);
    void SetUpSource(const gdal::TileStyle& style,
                     const std::function<WriterPtr(const gdal::TileStyle&)>& make);
    void RefuseChanges(const gdal::Treatment& treatment);
    std::string Source(const raster::TileWindow& window);

    std::shared_ptr<gdal::RasterLayer> layer_;
    const RasterJob& job_;
    int threadsAhead_;
    std::string extension_;
    WriterPtr writer_;                  ///< of the tiles; null where only the converter knows the format
    WriterPtr source_;                  ///< of what a converter gets; null without one
    std::shared_ptr<IRasterIO> files_;  ///< images as files of their own
    bool needsPlace_ = true;
    std::atomic<bool> verified_ = false;  ///< the converter has kept the values of a tile
    std::string lastSource_;
    const BlockLayer* block_ = nullptr;
    std::string expected_;
    bool conversionFailed_ = false;
    bool converted_ = false;
    Files ready_;
    std::map<std::string, MadeTile> made_;
};

}  // namespace orvo::tiling
