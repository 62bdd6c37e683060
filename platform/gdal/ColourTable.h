// Bringing colours down to a palette.
#pragma once

#include <optional>
#include <vector>

#include "platform/gdal/LayerReader.h"
#include "platform/gdal/Pixels.h"

namespace orvo::gdal {

/// Counts colours and cuts them into a palette: colours that share their upper six bits per channel count as
/// one, and the box of colours with the widest spread of pixels is halved until there are enough (median
/// cut).
class ColourCount {
  public:
    ColourCount();
    /// Counts the visible pixels of an 8-bit RGB or RGBA image.
    void Add(const Pixels& pixels);
    /// At most `colours` colours, each the mean of its box.
    Palette Cut(std::size_t colours) const;

  private:
    struct Bin {
        std::uint64_t count = 0;
        std::array<std::uint64_t, 3> sum{};
    };
    struct Box;
    std::vector<Bin> bins_;
};

/// Turns the tiles of one layer into indexed images, with one palette for all of them where colours must be
/// reduced. A pixel is transparent where its alpha is below 128. Greys with transparency give up level 0 to
/// it.
class Indexer {
  public:
    /// @param dataset of the reader; must outlive this object
    Indexer(GDALDataset& dataset, LayerReader& reader) : dataset_(dataset), reader_(reader) {}
    /// Turns pixels of any 8-bit form into the indexed form. The transparent entry, if any, has alpha 0.
    void MakeIndexed(Pixels& pixels);

  private:
    void Measure();
    unsigned char Nearest(const unsigned char* colour) const;
    void IndexGreys(Pixels& pixels) const;
    void IndexColours(Pixels& pixels);

    GDALDataset& dataset_;
    LayerReader& reader_;
    Palette palette_;                    // empty until it is measured
    std::vector<unsigned char> lookup_;  // upper six bits per channel → index
};

}  // namespace orvo::gdal
