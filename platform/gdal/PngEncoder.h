// Encoding PNG.
#pragma once

#include <memory>
#include <vector>

#include "platform/gdal/Pixels.h"
#include "platform/gdal/PngFilter.h"

struct z_stream_s;

namespace orvo::gdal {

/// Encodes images of every form, 8 and 16 bits deep. Imagery gets the best filter per row and is then
/// compressed by run lengths and Huffman codes, where a search for longer repetitions costs much and finds
/// nothing; images with flat colour, and those of 16 bits, are compressed with that search. Memory is reused
/// from image to image.
class PngEncoder {
  public:
    PngEncoder();
    ~PngEncoder();
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;

    /// The complete file, valid until the next call. Fails with number 5 for images that PNG does not hold.
    const std::vector<unsigned char>& Encode(const Pixels& pixels);

  private:
    struct CloseStream {
        void operator()(z_stream_s* stream) const;
    };
    using Stream = std::unique_ptr<z_stream_s, CloseStream>;

    void Header(const Pixels& pixels);
    void Colours(const Pixels& pixels);
    void Transparency(const Pixels& pixels);
    void Data(const Pixels& pixels);
    void Deflate(z_stream_s& stream, std::span<const unsigned char> bytes, int flush);
    void Chunk(const char* type, std::span<const unsigned char> data);
    z_stream_s& StreamFor(Stream& stream, int level, int strategy);

    std::vector<unsigned char> file_;
    std::vector<unsigned char> row_;  // in the file's byte order
    PngFilter filter_;
    Stream imagery_;
    Stream flat_;
};

}  // namespace orvo::gdal
