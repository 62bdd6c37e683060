#include "platform/gdal/PngEncoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#define ZLIB_CONST
#include <zlib.h>

#include "platform/RuntimeError.h"

namespace orvo::gdal {
namespace {

constexpr std::array<unsigned char, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr int kMaxMemory = 9;
constexpr int kSampleRows = 32;
/// An image with at least this share of pixels equal to their left neighbour has flat colour.
constexpr double kFlatShare = 0.35;

void Append32(std::vector<unsigned char>& to, std::size_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) to.push_back(static_cast<unsigned char>(value >> shift));
}

void Store32(unsigned char* to, std::size_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) *to++ = static_cast<unsigned char>(value >> shift);
}

unsigned char ColourType(Form form) {
    switch (form) {
        case Form::Grey:
            return 0;
        case Form::RGB:
            return 2;
        case Form::Indexed:
            return 3;
        case Form::GreyAlpha:
            return 4;
        case Form::RGBA:
            break;
    }
    return 6;
}

bool HasFlatColour(const Pixels& pixels) {
    const std::size_t pixel = pixels.PixelBytes();
    const int step = std::max(1, pixels.height / kSampleRows);
    std::size_t equal = 0;
    std::size_t looked = 0;
    for (int row = step / 2; row < pixels.height; row += step) {
        const unsigned char* const line =
            pixels.bytes.data() + pixels.RowBytes() * static_cast<std::size_t>(row);
        for (std::size_t at = pixel; at < pixels.RowBytes(); at += pixel, ++looked) {
            equal += std::memcmp(line + at, line + at - pixel, pixel) == 0 ? 1U : 0U;
        }
    }
    return static_cast<double>(equal) >= kFlatShare * static_cast<double>(looked);
}

}  // namespace

PngEncoder::PngEncoder() = default;
PngEncoder::~PngEncoder() = default;

void PngEncoder::CloseStream::operator()(z_stream_s* stream) const {
    deflateEnd(stream);
    delete stream;
}

z_stream_s& PngEncoder::StreamFor(Stream& stream, int level, int strategy) {
    if (stream) {
        deflateReset(stream.get());
        return *stream;
    }
    auto fresh = std::make_unique<z_stream_s>();
    if (deflateInit2(fresh.get(), level, Z_DEFLATED, MAX_WBITS, kMaxMemory, strategy) != Z_OK) {
        throw RuntimeError(Fault::OutOfMemory);
    }
    stream.reset(fresh.release());
    return *stream;
}

const std::vector<unsigned char>& PngEncoder::Encode(const Pixels& pixels) {
    if (pixels.width <= 0 || pixels.height <= 0 || pixels.palette.size() > 256) {
        throw RuntimeError(Fault::InvalidProcedureCall);
    }
    file_.assign(kSignature.begin(), kSignature.end());
    Header(pixels);
    Colours(pixels);
    Transparency(pixels);
    Data(pixels);
    Chunk("IEND", {});
    return file_;
}

void PngEncoder::Header(const Pixels& pixels) {
    std::vector<unsigned char> data;
    Append32(data, static_cast<std::size_t>(pixels.width));
    Append32(data, static_cast<std::size_t>(pixels.height));
    data.insert(data.end(), {static_cast<unsigned char>(pixels.depth), ColourType(pixels.form), 0, 0, 0});
    Chunk("IHDR", data);
}

void PngEncoder::Colours(const Pixels& pixels) {
    if (pixels.form != Form::Indexed) return;
    std::vector<unsigned char> data;
    for (const Colour& colour : pixels.palette)
        data.insert(data.end(), {colour.red, colour.green, colour.blue});
    Chunk("PLTE", data);
}

void PngEncoder::Transparency(const Pixels& pixels) {
    std::vector<unsigned char> data;
    if (pixels.form == Form::Indexed) {
        for (const Colour& colour : pixels.palette) data.push_back(colour.alpha);
        while (!data.empty() && data.back() == 255) data.pop_back();
    } else if (pixels.transparent && !HasAlpha(pixels.form)) {
        for (int channel = 0; channel < pixels.Channels(); ++channel) {
            const unsigned value = (*pixels.transparent)[static_cast<std::size_t>(channel)];
            data.insert(data.end(),
                        {static_cast<unsigned char>(value >> 8), static_cast<unsigned char>(value)});
        }
    }
    if (!data.empty()) Chunk("tRNS", data);
}

void PngEncoder::Data(const Pixels& pixels) {
    const bool flat = pixels.depth == 16 || HasFlatColour(pixels);
    z_stream_s& stream =
        flat ? StreamFor(flat_, Z_DEFAULT_COMPRESSION, Z_DEFAULT_STRATEGY) : StreamFor(imagery_, 1, Z_RLE);
    const std::size_t start = file_.size();
    const std::size_t rowBytes = pixels.RowBytes();
    const std::size_t most = (rowBytes + 1) * static_cast<std::size_t>(pixels.height);
    file_.resize(start + 8 + deflateBound(&stream, most));
    stream.next_out = file_.data() + start + 8;
    stream.avail_out = static_cast<uInt>(file_.size() - start - 8);
    filter_.Start(rowBytes, pixels.PixelBytes());
    row_.resize(rowBytes);
    for (int y = 0; y < pixels.height; ++y) {
        const unsigned char* row = pixels.bytes.data() + rowBytes * static_cast<std::size_t>(y);
        if (pixels.depth == 16) {
            const auto* const words = reinterpret_cast<const std::uint16_t*>(row);
            for (std::size_t i = 0; i < rowBytes / 2; ++i) {
                row_[2 * i] = static_cast<unsigned char>(words[i] >> 8);
                row_[2 * i + 1] = static_cast<unsigned char>(words[i]);
            }
            row = row_.data();
        }
        const bool keep = pixels.form == Form::Indexed;
        Deflate(stream, keep ? filter_.Keep(row) : filter_.Filter(row), Z_NO_FLUSH);
    }
    Deflate(stream, {}, Z_FINISH);
    const std::size_t size = file_.size() - start - 8 - stream.avail_out;
    Store32(file_.data() + start, size);
    std::memcpy(file_.data() + start + 4, "IDAT", 4);
    file_.resize(start + 8 + size);
    Append32(file_, crc32(0, file_.data() + start + 4, static_cast<uInt>(size + 4)));
}

void PngEncoder::Deflate(z_stream_s& stream, std::span<const unsigned char> bytes, int flush) {
    stream.next_in = bytes.data();
    stream.avail_in = static_cast<uInt>(bytes.size());
    const int result = deflate(&stream, flush);
    if (stream.avail_in != 0 || (flush == Z_FINISH) != (result == Z_STREAM_END)) {
        throw RuntimeError(Fault::InvalidProcedureCall);
    }
}

void PngEncoder::Chunk(const char* type, std::span<const unsigned char> data) {
    Append32(file_, data.size());
    const std::size_t start = file_.size();
    const std::string_view name(type);
    file_.insert(file_.end(), name.begin(), name.end());
    file_.insert(file_.end(), data.begin(), data.end());
    Append32(file_, crc32(0, file_.data() + start, static_cast<uInt>(file_.size() - start)));
}

}  // namespace orvo::gdal
