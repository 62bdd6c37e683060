// Bringing colours down to a palette. Our own count since the raster library's median cut keeps five bits of
// a colour, so that white becomes a grey, and its dithering shows where tiles meet.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platform/gdal/LayerReader.h"
#include "platform/gdal/Lazy.h"
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
    /// The reader must outlive this object.
    explicit Indexer(LayerReader& reader) : reader_(reader) {}
    /// Turns pixels of any 8-bit form into the indexed form. The transparent entry, if any, has alpha 0.
    void MakeIndexed(Pixels& pixels);

  private:
    /// The layer's colours and which of them comes nearest to any colour.
    struct Table {
        Palette palette;
        std::vector<unsigned char> nearest;  // by the upper six bits per channel
    };
    Table Measure();
    static void IndexGreys(Pixels& pixels);
    void IndexColours(Pixels& pixels);

    LayerReader& reader_;
    Lazy<Table> table_;
};

}  // namespace orvo::gdal
