// Tiles of one layer as images that are encoded in process.
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "platform/gdal/ColourTable.h"
#include "platform/gdal/FileInMemory.h"
#include "platform/gdal/LayerReader.h"
#include "platform/gdal/OrderedRows.h"
#include "platform/gdal/PictureEncoder.h"

namespace orvo::gdal {

Holds HoldsOf(PictureFormat format);

/// A layer that tiles are cut from, and what was learned about it as a whole. It sets the library's block
/// cache, which the process shares.
class LayerEncoder {
  public:
    /// @param range of the stretch to 8 bits; without one the layer's own is measured
    explicit LayerEncoder(std::shared_ptr<RasterLayer> layer, std::optional<Range> range = {});

    RasterLayer& Layer() const { return *layer_; }
    LayerReader& Reader() { return reader_; }

    /// The image file's bytes, valid until the next call. A TIFF keeps the source's bands, type, palette,
    /// nodata and place; LayerReader.h says what the others show.
    /// Fails with number 57 where the source cannot be read.
    std::span<const unsigned char> Encode(const TileWindow& window, PictureFormat format, int quality);

    /// Reads what Encode would show, without another try. Fails like it.
    void ReadPicture(const TileWindow& window, PictureFormat format, Pixels& pixels);

    /// Works on a window of the source, once more from the start where it cannot be read at first.
    template <class Work>
    void Read(const TileWindow& window, Work&& work) {
        for (bool again = true; again;) {
            again = false;
            try {
                Reach(window);
                work();
            } catch (const RuntimeError& failure) {
                if (!Recovers(failure)) throw;
                again = true;
            }
        }
    }

  private:
    void Reach(const TileWindow& window);
    bool Recovers(const RuntimeError& failure);
    std::span<const unsigned char> EncodeOnce(const TileWindow& window, PictureFormat format, int quality);

    std::shared_ptr<RasterLayer> layer_;
    LayerReader reader_;
    Indexer indexer_;
    OrderedRows rows_;
    Pixels pixels_;
    PictureEncoder encoder_;
    std::optional<FileInMemory> tiff_;  // the last one
};

}  // namespace orvo::gdal
