// Tiles of one layer in any raster format that the library can write.
#pragma once

#include <gdal_priv.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/gdal/FormatTrial.h"
#include "platform/gdal/LayerEncoder.h"
#include "platform/gdal/RasterFormat.h"
#include "platform/gdal/TileInWork.h"

namespace orvo::gdal {

/// How the tiles of a layer are written.
struct TileStyle {
    RasterFormat format;
    int quality = raster::kDefaultQuality;  ///< 1 to 100, where the format takes one
    std::vector<std::string> options{};     ///< NAME=VALUE, as the library's tools take them
    std::optional<Range> range{};           ///< of the stretch to 8 bits; without one the layer's own
    std::optional<Holds> picture{};         ///< a picture of these, whatever the format holds
    bool place = false;                     ///< says where tiles lie also beside formats that cannot
    raster::Effort effort = raster::Effort::Normal;  ///< of PNG
};

/// What a format makes of the layer.
struct Treatment {
    /// A picture of 8 bits, or 16 unsigned ones, in place of the layer's own bands, types and values.
    bool picture = false;
    bool stretched = false;  ///< the picture's cells were brought to 8 bits
    bool losses = false;     ///< cells change their values, though they have the layer's type
    std::string lost;        ///< what else of the layer a tile does not say, for people; empty for nothing
};

/// Its calls may come from several threads: one reads at a time, any number write.
class TileWriter {
  public:
    /// Tries the format with a sample of the layer; png, jpg, gif and bmp without options are known.
    /// @param columns, rows of the sample in pixels: a tile's, for some formats take certain sizes only
    /// Fails with number 440 where the format holds no tile of the layer.
    TileWriter(std::shared_ptr<RasterLayer> layer, TileStyle style, int columns, int rows);
    ~TileWriter();
    TileWriter(const TileWriter&) = delete;
    TileWriter& operator=(const TileWriter&) = delete;

    /// Whether the files that it makes say where they lie.
    bool SaysPlace() const { return !known_ && (keepsPlace_ || style_.place); }
    const RasterFormat& Format() const { return style_.format; }
    const Treatment& Treats() const { return treatment_; }
    /// How cells were brought to 8 bits. Fails like Read.
    Stretch LayerStretch();
    /// Of the cells that a picture shows.
    GDALDataType PictureType() { return encoder_.Reader().Plan().type; }

    /// The first step of Make, which has to follow the source's order to be quick. The writer must outlive
    /// what it gives. @param name of the file without folder, extension included
    /// Fails with number 57 where the source cannot be read.
    std::shared_ptr<TileInWork> Read(const TileWindow& window, const std::string& name);
    /// The second step: the tile's file, first of all, and files that go with it; the same for the same
    /// window and name. Fails with number 440 where the format refuses.
    std::vector<MadeFile> Write(TileInWork& tile);
    std::vector<MadeFile> Make(const TileWindow& window, const std::string& name) {
        return Write(*Read(window, name));
    }
    /// An uncompressed TIFF of the layer's own cells. Fails like Read.
    std::string MakeTiff(const TileWindow& window);
    /// Whether a window shows nothing but nodata and full transparency. Fails like Read.
    bool IsBlank(const TileWindow& window);

  private:
    /// What pictures a format takes: Holds, and greys only as colours.
    struct PictureKind {
        Holds holds;
        bool onlyColours = false;
    };

    void MakeWorkFolder();
    void Try(const TileWindow& sample);
    /// A sample with values that are hard to keep, written and read back.
    Likeness Trial(GDALDataset& image);
    bool TryNative(const TileWindow& sample);
    bool TryPicture(const TileWindow& sample, const PictureKind& kind);
    bool IsReadAtOnce(const TileWindow& window) const { return !alike_.empty() && window.IsExact(); }
    GDALDatasetUniquePtr Part(const TileWindow& window, TileInWork& tile);
    GDALDatasetUniquePtr VirtualPart(const TileWindow& window) const;
    GDALDatasetUniquePtr CellsOf(const TileWindow& window, TileInWork& tile);
    GDALDatasetUniquePtr Picture(const TileWindow& window, const PictureKind& kind, TileInWork& tile);
    std::shared_ptr<TileInWork> NewTile(const std::string& name);
    std::vector<MadeFile> FilesOf(GDALDataset& image, const std::string& name);
    void SayPlace(GDALDataset& target, const TileWindow& window) const;
    /// Writes an image in the format and lets `look` see the file while it stands.
    void Copy(GDALDataset& image, const std::string& name,
              const std::function<void(const FolderOfFiles& files, const std::string& path)>& look);
    CPLStringList Options() const;

    LayerEncoder encoder_;
    TileStyle style_;
    std::string workFolder_;  ///< for formats whose own library needs files on a disk; else empty
    GDALDriver& driver_;
    PictureFormat known_;  ///< written by encoders of our own
    bool inMemory_ = true;
    bool keepsPlace_ = true;  ///< until a sample says otherwise
    PictureKind kind_;
    Treatment treatment_;
    std::vector<int> alike_;  ///< all bands, where they have one type and no mask of their own; else empty
    std::mutex resting_;
    std::vector<std::unique_ptr<TileInWork>> idle_;  ///< for later tiles
};

}  // namespace orvo::gdal
