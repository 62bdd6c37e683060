#include "platform/gdal/ColourTable.h"

#include <algorithm>

#include "platform/gdal/Pieces.h"

namespace orvo::gdal {
namespace {

constexpr int kBits = 6;
constexpr int kDrop = 8 - kBits;
constexpr std::size_t kBins = std::size_t{1} << (3 * kBits);
constexpr unsigned kVisible = 128;
constexpr Holds kColours{.transparency = true};

std::size_t BinOf(const unsigned char* colour) {
    return (static_cast<std::size_t>(colour[0] >> kDrop) << (2 * kBits)) |
           (static_cast<std::size_t>(colour[1] >> kDrop) << kBits) |
           static_cast<std::size_t>(colour[2] >> kDrop);
}

/// The bin's coordinate along a channel, 0 to 63.
int Along(std::size_t bin, int channel) {
    return static_cast<int>(bin >> ((2 - channel) * kBits)) & ((1 << kBits) - 1);
}

bool IsVisible(const Pixels& pixels, const unsigned char* pixel) {
    if (pixels.form == Form::RGBA) return pixel[3] >= kVisible;
    return !pixels.transparent || pixel[0] != (*pixels.transparent)[0] ||
           pixel[1] != (*pixels.transparent)[1] || pixel[2] != (*pixels.transparent)[2];
}

int Distance(const Colour& a, const unsigned char* b) {
    const int red = a.red - b[0];
    const int green = a.green - b[1];
    const int blue = a.blue - b[2];
    return red * red + green * green + blue * blue;
}

unsigned char Nearest(const Palette& palette, const unsigned char* colour) {
    const auto nearer = [&](const Colour& a, const Colour& b) {
        return Distance(a, colour) < Distance(b, colour);
    };
    return static_cast<unsigned char>(std::min_element(palette.begin(), palette.end(), nearer) -
                                      palette.begin());
}

}  // namespace

/// A set of bins.
struct ColourCount::Box {
    std::vector<std::size_t> bins;
    std::uint64_t count = 0;
    int widest = 0;  ///< channel of the greatest extent
    int extent = 0;  ///< in bins, 0 for a single one

    Box(std::vector<std::size_t> list, const std::vector<Bin>& all) : bins(std::move(list)) {
        for (const std::size_t bin : bins) count += all[bin].count;
        for (int channel = 0; channel < 3; ++channel) {
            const auto [low, high] = std::minmax_element(bins.begin(), bins.end(), [&](auto a, auto b) {
                return Along(a, channel) < Along(b, channel);
            });
            const int size = Along(*high, channel) - Along(*low, channel);
            if (size > extent) {
                extent = size;
                widest = channel;
            }
        }
    }
    double Spread() const { return static_cast<double>(count) * extent; }

    /// Splits off the half of the pixels that lies higher along the widest channel.
    Box SplitOff(const std::vector<Bin>& all) {
        std::sort(bins.begin(), bins.end(),
                  [&](auto a, auto b) { return Along(a, widest) < Along(b, widest); });
        std::uint64_t below = 0;
        std::size_t at = 0;
        while (at + 1 < bins.size() && below < count / 2) below += all[bins[at++]].count;
        at = std::clamp<std::size_t>(at, 1, bins.size() - 1);
        Box upper(std::vector<std::size_t>(bins.begin() + static_cast<std::ptrdiff_t>(at), bins.end()), all);
        bins.resize(at);
        *this = Box(std::move(bins), all);
        return upper;
    }

    Colour Mean(const std::vector<Bin>& all) const {
        std::array<std::uint64_t, 3> sum{};
        for (const std::size_t bin : bins) {
            for (std::size_t c = 0; c < 3; ++c) sum[c] += all[bin].sum[c];
        }
        const auto part = [&](std::uint64_t value) {
            return static_cast<unsigned char>((value + count / 2) / count);
        };
        return {part(sum[0]), part(sum[1]), part(sum[2])};
    }
};

ColourCount::ColourCount() : bins_(kBins) {}

void ColourCount::Add(const Pixels& pixels) {
    const auto channels = static_cast<std::size_t>(pixels.Channels());
    for (std::size_t i = 0; i < pixels.Count(); ++i) {
        const unsigned char* const pixel = pixels.bytes.data() + i * channels;
        if (!IsVisible(pixels, pixel)) continue;
        Bin& bin = bins_[BinOf(pixel)];
        ++bin.count;
        for (std::size_t c = 0; c < 3; ++c) bin.sum[c] += pixel[c];
    }
}

Palette ColourCount::Cut(std::size_t colours) const {
    std::vector<std::size_t> used;
    for (std::size_t bin = 0; bin < bins_.size(); ++bin) {
        if (bins_[bin].count > 0) used.push_back(bin);
    }
    if (used.empty()) return {Colour{}};
    std::vector<Box> boxes{Box(std::move(used), bins_)};
    const auto narrower = [](const Box& a, const Box& b) { return a.Spread() < b.Spread(); };
    while (boxes.size() < colours) {
        const auto widest = std::max_element(boxes.begin(), boxes.end(), narrower);
        if (widest->extent == 0) break;
        Box upper = widest->SplitOff(bins_);
        boxes.push_back(std::move(upper));
    }
    Palette palette;
    for (const Box& box : boxes) palette.push_back(box.Mean(bins_));
    return palette;
}

Indexer::Table Indexer::Measure() {
    ColourCount count;
    Pixels piece;
    ForEachPiece(reader_.Layer().Dataset(), [&](const TileWindow& window) {
        reader_.Read(window, kColours, piece);
        count.Add(piece);
    });
    const bool transparent = HasAlpha(piece.form) || piece.transparent;
    Table table{count.Cut(transparent ? 255 : 256), std::vector<unsigned char>(kBins)};
    for (std::size_t bin = 0; bin < kBins; ++bin) {
        std::array<unsigned char, 3> middle{};
        for (int c = 0; c < 3; ++c) {
            middle[static_cast<std::size_t>(c)] = static_cast<unsigned char>((Along(bin, c) << kDrop) + 2);
        }
        table.nearest[bin] = Nearest(table.palette, middle.data());
    }
    if (transparent) table.palette.push_back({0, 0, 0, 0});
    return table;
}

void Indexer::IndexGreys(Pixels& pixels) {
    Palette palette;
    for (unsigned level = 0; level < 256; ++level) {
        const auto grey = static_cast<unsigned char>(level);
        palette.push_back({grey, grey, grey});
    }
    if (pixels.form == Form::GreyAlpha) {
        palette[0].alpha = 0;
        for (std::size_t i = 0; i < pixels.Count(); ++i) {
            const unsigned char* const pixel = pixels.bytes.data() + 2 * i;
            const bool visible = pixel[1] >= kVisible;
            pixels.bytes[i] = visible ? std::max<unsigned char>(pixel[0], 1) : 0;
        }
    } else if (pixels.transparent) {
        palette[(*pixels.transparent)[0]].alpha = 0;
    }
    pixels.palette = std::move(palette);
}

void Indexer::IndexColours(Pixels& pixels) {
    const Table& table = table_.Get([&] { return Measure(); });
    const auto channels = static_cast<std::size_t>(pixels.Channels());
    const auto hidden = static_cast<unsigned char>(table.palette.size() - 1);
    for (std::size_t i = 0; i < pixels.Count(); ++i) {
        const unsigned char* const pixel = pixels.bytes.data() + i * channels;
        pixels.bytes[i] = IsVisible(pixels, pixel) ? table.nearest[BinOf(pixel)] : hidden;
    }
    pixels.palette = table.palette;
}

void Indexer::MakeIndexed(Pixels& pixels) {
    if (pixels.form == Form::Indexed) {
        for (Colour& colour : pixels.palette) colour.alpha = colour.alpha < kVisible ? 0 : 255;
    } else if (pixels.form == Form::Grey || pixels.form == Form::GreyAlpha) {
        IndexGreys(pixels);
    } else {
        IndexColours(pixels);
    }
    pixels.form = Form::Indexed;
    pixels.transparent.reset();
    pixels.Resize(pixels.width, pixels.height);
}

}  // namespace orvo::gdal
