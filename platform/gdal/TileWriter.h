// Tiles of one layer in any raster format that the library can write.
#pragma once

#include <gdal_priv.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/gdal/FormatTrial.h"
#include "platform/gdal/LayerEncoder.h"
#include "platform/gdal/RasterFormat.h"

namespace orvo::gdal {

/// How the tiles of a layer are written.
struct TileStyle {
    RasterFormat format;
    int quality = raster::kDefaultQuality;  ///< 1 to 100, where the format takes one
    std::vector<std::string> options{};     ///< NAME=VALUE, as the library's tools take them
    std::optional<Range> range{};           ///< of the stretch to 8 bits; without one the layer's own
    std::optional<Holds> picture{};         ///< a picture of these, whatever the format holds
    bool place = false;                     ///< says where tiles lie also beside formats that cannot
};

/// What a format makes of the layer.
struct Treatment {
    /// A picture of 8 bits, or 16 unsigned ones, in place of the layer's own bands, types and values.
    bool picture = false;
    bool stretched = false;  ///< the picture's cells were brought to 8 bits
    bool losses = false;     ///< cells change their values, though they have the layer's type
    std::string lost;        ///< what else of the layer a tile does not say, for people; empty for nothing
};

/// A file with its last name only.
struct MadeFile {
    std::string name;
    std::string bytes;
};

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
    LayerEncoder& Encoder() { return encoder_; }

    /// A window as a file, first of all, and files that go with it; the same for the same window and name.
    /// @param name of the file without folder, extension included
    /// Fails with number 57 where the source cannot be read, 440 where the format refuses.
    std::vector<MadeFile> Make(const TileWindow& window, const std::string& name);

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
    GDALDatasetUniquePtr Part(const TileWindow& window);
    GDALDatasetUniquePtr VirtualPart(const TileWindow& window) const;
    GDALDatasetUniquePtr CellsOf(const TileWindow& window);
    GDALDatasetUniquePtr Picture(const TileWindow& window, const PictureKind& kind);
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
    Pixels pixels_;
    std::vector<int> alike_;  ///< all bands, where they have one type and no mask of their own; else empty
    std::vector<unsigned char> cells_;
};

}  // namespace orvo::gdal
