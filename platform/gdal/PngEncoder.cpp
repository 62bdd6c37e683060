#include "platform/gdal/PngEncoder.h"

#include <libdeflate.h>

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
using raster::Effort;

constexpr int kMaxMemory = 9;
constexpr std::size_t kLargestChunk = 0x7fffffff;
constexpr int kSampleRows = 32;
/// An image with at least this share of pixels equal to their left neighbour may have flat colour.
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

/// Rows spread evenly over an image, in pairs, for what repeats from row to row counts too.
void TakeSample(const Pixels& pixels, Pixels& sample) {
    sample.form = pixels.form;
    sample.depth = pixels.depth;
    sample.Resize(pixels.width, std::min(pixels.height, kSampleRows));
    for (int row = 0; row < sample.height; ++row) {
        const int from =
            sample.height < kSampleRows ? row : (row / 2) * 2 * pixels.height / kSampleRows + row % 2;
        std::memcpy(sample.bytes.data() + sample.RowBytes() * static_cast<std::size_t>(row),
                    pixels.bytes.data() + sample.RowBytes() * static_cast<std::size_t>(from),
                    sample.RowBytes());
    }
}

bool MayBeFlat(const Pixels& sample) {
    const std::size_t pixel = sample.PixelBytes();
    std::size_t equal = 0;
    for (std::size_t at = pixel; at < sample.bytes.size(); at += pixel) {
        const unsigned char* const here = sample.bytes.data() + at;
        equal += std::memcmp(here, here - pixel, pixel) == 0 ? 1U : 0U;
    }
    return static_cast<double>(equal) >= kFlatShare * static_cast<double>(sample.Count());
}

}  // namespace

PngEncoder::PngEncoder(raster::Effort effort) : effort_(effort) {}
PngEncoder::~PngEncoder() = default;

void PngEncoder::EndStream::operator()(z_stream_s* stream) const {
    deflateEnd(stream);
    delete stream;
}

void PngEncoder::FreeCompressor::operator()(libdeflate_compressor* compressor) const {
    libdeflate_free_compressor(compressor);
}

const std::vector<unsigned char>& PngEncoder::Encode(const Pixels& pixels) {
    if (pixels.width <= 0 || pixels.height <= 0 || pixels.palette.size() > 256) {
        throw RuntimeError(Fault::InvalidProcedureCall);
    }
    file_.assign(kSignature.begin(), kSignature.end());
    Header(pixels);
    Colours(pixels);
    Transparency(pixels);
    Data(pixels, Choose(pixels));
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

/// What may be the best; the sample of an image of 8 bits is taken here.
std::vector<PngEncoder::Way> PngEncoder::WaysFor(const Pixels& pixels) {
    constexpr int kShort = 1, kUsual = 6, kLong = 12;
    const int search = effort_ == Effort::Fast ? kShort : effort_ == Effort::Small ? kLong : kUsual;
    if (pixels.form == Form::Indexed) return {{false, search}};
    if (pixels.depth == 16) return {{true, search}};
    std::vector<Way> ways{{true, effort_ == Effort::Fast ? kShort : Way::kRuns}};
    if (effort_ == Effort::Small) ways.push_back({true, search});
    TakeSample(pixels, sample_);
    if (MayBeFlat(sample_)) ways.push_back({false, search});
    return ways;
}

PngEncoder::Way PngEncoder::Choose(const Pixels& pixels) {
    const std::vector<Way> ways = WaysFor(pixels);
    if (ways.size() == 1) return ways.front();
    Way best = ways.front();
    std::size_t least = SIZE_MAX;
    const std::size_t end = file_.size();
    for (const Way& way : ways) {
        const std::size_t size = Data(sample_, way);
        file_.resize(end);
        if (size >= least) continue;
        least = size;
        best = way;
    }
    return best;
}

/// One row in the file's byte order.
std::span<const unsigned char> PngEncoder::Row(const Pixels& pixels, int y) {
    const std::size_t rowBytes = pixels.RowBytes();
    const std::span row(pixels.bytes.data() + rowBytes * static_cast<std::size_t>(y), rowBytes);
    if (pixels.depth == 8) return row;
    const auto* const words = reinterpret_cast<const std::uint16_t*>(row.data());
    row_.resize(rowBytes);
    for (std::size_t i = 0; i < rowBytes / 2; ++i) {
        row_[2 * i] = static_cast<unsigned char>(words[i] >> 8);
        row_[2 * i + 1] = static_cast<unsigned char>(words[i]);
    }
    return row_;
}

void PngEncoder::FilterRows(const Pixels& pixels, bool filtered) {
    const std::size_t line = pixels.RowBytes() + 1;
    filter_.Start(pixels.RowBytes(), pixels.PixelBytes());
    rows_.resize(line * static_cast<std::size_t>(pixels.height));
    for (int y = 0; y < pixels.height; ++y) {
        const unsigned char* const row = Row(pixels, y).data();
        const auto bytes = filtered ? filter_.Filter(row) : filter_.Keep(row);
        std::memcpy(rows_.data() + line * static_cast<std::size_t>(y), bytes.data(), line);
    }
}

/// Appends the compressed rows as a chunk and returns their size in bytes.
std::size_t PngEncoder::Data(const Pixels& pixels, Way way) {
    const std::size_t start = file_.size();
    const std::size_t most = (pixels.RowBytes() + 1) * static_cast<std::size_t>(pixels.height);
    const std::size_t room = std::max(libdeflate_zlib_compress_bound(nullptr, most), most + most / 8 + 1024);
    if (room > kLargestChunk) {
        throw RuntimeError(static_cast<Long>(Fault::AutomationError), "the tile is too large for a PNG");
    }
    FilterRows(pixels, way.filtered);
    file_.resize(start + 8 + room);
    const std::size_t size = Pack(way.level, std::span(file_).subspan(start + 8));
    Store32(file_.data() + start, size);
    std::memcpy(file_.data() + start + 4, "IDAT", 4);
    file_.resize(start + 8 + size);
    Append32(file_, libdeflate_crc32(0, file_.data() + start + 4, size + 4));
    return size;
}

std::size_t PngEncoder::Pack(int level, std::span<unsigned char> room) {
    if (level == Way::kRuns) return PackRuns(room);
    auto& compressor = compressors_[level];
    if (!compressor) compressor.reset(libdeflate_alloc_compressor(level));
    if (!compressor) throw RuntimeError(Fault::OutOfMemory);
    const std::size_t size =
        libdeflate_zlib_compress(compressor.get(), rows_.data(), rows_.size(), room.data(), room.size());
    if (size == 0) throw RuntimeError(Fault::InvalidProcedureCall);
    return size;
}

std::size_t PngEncoder::PackRuns(std::span<unsigned char> room) {
    if (!runs_) {
        auto fresh = std::make_unique<z_stream_s>();
        if (deflateInit2(fresh.get(), 1, Z_DEFLATED, MAX_WBITS, kMaxMemory, Z_RLE) != Z_OK)
            throw RuntimeError(Fault::OutOfMemory);
        runs_.reset(fresh.release());
    }
    deflateReset(runs_.get());
    runs_->next_in = rows_.data();
    runs_->avail_in = static_cast<uInt>(rows_.size());
    runs_->next_out = room.data();
    runs_->avail_out = static_cast<uInt>(room.size());
    if (deflate(runs_.get(), Z_FINISH) != Z_STREAM_END) throw RuntimeError(Fault::InvalidProcedureCall);
    return runs_->total_out;
}

void PngEncoder::Chunk(const char* type, std::span<const unsigned char> data) {
    Append32(file_, data.size());
    const std::size_t start = file_.size();
    const std::string_view name(type);
    file_.insert(file_.end(), name.begin(), name.end());
    file_.insert(file_.end(), data.begin(), data.end());
    Append32(file_, libdeflate_crc32(0, file_.data() + start, file_.size() - start));
}

}  // namespace orvo::gdal
