#include "platform/gdal/LayerReader.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvo::gdal {
namespace {

Layout Interleaved(const Pixels& pixels) {
    return {.type = pixels.depth == 16 ? GDT_UInt16 : GDT_Byte,
            .pixel = pixels.PixelBytes(),
            .line = pixels.RowBytes(),
            .band = static_cast<std::size_t>(pixels.depth / 8)};
}

/// The channel's value of pixel `i`.
unsigned Channel(const Pixels& pixels, std::size_t i, int channel) {
    const std::size_t at =
        i * static_cast<std::size_t>(pixels.Channels()) + static_cast<std::size_t>(channel);
    if (pixels.depth == 8) return pixels.bytes[at];
    return reinterpret_cast<const std::uint16_t*>(pixels.bytes.data())[at];
}

void SetAlpha(Pixels& pixels, std::size_t i, unsigned value) {
    const auto channels = static_cast<std::size_t>(pixels.Channels());
    const std::size_t at = i * channels + channels - 1;
    if (pixels.depth == 8) {
        pixels.bytes[at] = static_cast<unsigned char>(value);
    } else {
        reinterpret_cast<std::uint16_t*>(pixels.bytes.data())[at] = static_cast<std::uint16_t>(value);
    }
}

unsigned Opaque(int depth) {
    return depth == 16 ? 65535 : 255;
}

bool IsEqual(unsigned value, const std::optional<double>& nodata) {
    return nodata && *nodata == value;
}

bool HasTransparentEntry(const Palette& palette) {
    return std::any_of(palette.begin(), palette.end(),
                       [](const Colour& colour) { return colour.alpha < 255; });
}

}  // namespace

LayerReader::LayerReader(RasterLayer& layer, std::optional<Range> range)
    : layer_(layer), range_(range), plan_(PlanBands(layer.Dataset())) {}

bool LayerReader::Recover() {
    const bool first = !ahead_.IsStopped();
    ahead_.Stop();
    layer_.Reopen();
    return first;
}

const Stretch& LayerReader::LayerStretch() {
    return stretch_.Get([&] {
        return range_ ? Stretch{range_->low, range_->high, true} : MeasureStretch(layer_.Dataset(), plan_);
    });
}

bool LayerReader::IsStretched(const Holds& holds) const {
    return plan_.type != GDT_Byte && !(plan_.type == GDT_UInt16 && holds.sixteenBits);
}

Form LayerReader::FormFor(const Holds& holds) {
    bool alpha = plan_.alpha != 0 || plan_.mask;
    const bool indexed = !plan_.palette.empty();
    if (indexed && holds.palette && !alpha && plan_.type == GDT_Byte && plan_.palette.size() <= 256) {
        return Form::Indexed;
    }
    if (indexed) {
        alpha = alpha || plan_.HasNodata() || HasTransparentEntry(plan_.palette);
    } else if (IsStretched(holds)) {
        alpha = LayerStretch().holes || alpha;
    }
    if (indexed || plan_.colours.size() == 3) return alpha && holds.transparency ? Form::RGBA : Form::RGB;
    return alpha && holds.transparency ? Form::GreyAlpha : Form::Grey;
}

void LayerReader::Read(const TileWindow& window, const Holds& holds, Pixels& pixels) {
    pixels.form = FormFor(holds);
    const bool indexed = !plan_.palette.empty();
    pixels.depth = !indexed && plan_.type == GDT_UInt16 && holds.sixteenBits ? 16 : 8;
    pixels.transparent.reset();
    pixels.Resize(window.columns, window.rows);
    if (pixels.form == Form::Indexed) {
        ReadIndexed(window, pixels);
    } else if (indexed) {
        ReadExpanded(window, pixels);
    } else if (IsStretched(holds)) {
        ReadStretched(window, pixels);
    } else {
        ReadDirect(window, pixels);
        if (holds.transparency) SetTransparentColour(pixels);
    }
}

void LayerReader::ReadCells(const TileWindow& window, std::span<const int> bands, GDALDataType type,
                            unsigned char* cells) {
    int across = 0, down = 0;
    layer_.Dataset().GetRasterBand(1)->GetBlockSize(&across, &down);
    if (across == layer_.Width()) {
        ahead_.Read(layer_, bands, type, window, Resample::Nearest, cells);
        return;
    }
    // Reading along spares nothing where the source itself is made of tiles.
    const auto cell = static_cast<std::size_t>(GDALGetDataTypeSizeBytes(type));
    const std::size_t pixel = cell * bands.size();
    ReadWindow(layer_.Dataset(), bands, window, Resample::Nearest, cells,
               {.type = type,
                .pixel = pixel,
                .line = pixel * static_cast<std::size_t>(window.columns),
                .band = cell});
}

bool LayerReader::IsBlank(const TileWindow& window) {
    for (int number = 1; number <= layer_.BandCount(); ++number) {
        if (number != plan_.alpha && !IsBlank(*layer_.Dataset().GetRasterBand(number), window)) return false;
    }
    return true;
}

bool LayerReader::IsBlank(GDALRasterBand& band, const TileWindow& window) const {
    std::vector<unsigned char> visible(
        static_cast<std::size_t>(window.columns) * static_cast<std::size_t>(window.rows), 255);
    if ((band.GetMaskFlags() & GMF_ALL_VALID) == 0)
        ReadWindow(*band.GetMaskBand(), window, Resample::Nearest, visible.data(), {.type = GDT_Byte});
    const bool indexed = !plan_.palette.empty();
    if (indexed || GDALDataTypeIsFloating(band.GetRasterDataType()) != 0) {
        std::vector<double> cells(visible.size());
        ReadWindow(band, window, Resample::Nearest, cells.data(), {.type = GDT_Float64});
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const auto index = static_cast<std::size_t>(indexed ? cells[i] : 0);
            const bool clear = indexed && index < plan_.palette.size() && plan_.palette[index].alpha == 0;
            if (clear || std::isnan(cells[i])) visible[i] = 0;
        }
    }
    return std::ranges::all_of(visible, [](unsigned char value) { return value == 0; });
}

void LayerReader::ReadIndexed(const TileWindow& window, Pixels& pixels) {
    ahead_.Read(layer_, plan_.colours, GDT_Byte, window, Resample::Nearest, pixels.bytes.data());
    pixels.palette = plan_.palette;
    // An index past the palette's end is shown black, as other readers do.
    const std::size_t used =
        pixels.bytes.empty() ? 0 : *std::max_element(pixels.bytes.begin(), pixels.bytes.end());
    if (used >= pixels.palette.size()) pixels.palette.resize(used + 1);
    for (std::size_t i = 0; i < pixels.palette.size(); ++i) {
        if (IsEqual(static_cast<unsigned>(i), plan_.nodata[0])) pixels.palette[i].alpha = 0;
    }
}

void LayerReader::ReadExpanded(const TileWindow& window, Pixels& pixels) {
    if (HasAlpha(pixels.form)) ReadAlpha(window, pixels);
    indices_.resize(pixels.Count());
    ReadWindow(layer_.Dataset(), plan_.colours, window, Resample::Nearest, indices_.data(),
               {.type = GDT_UInt16});
    const auto channels = static_cast<std::size_t>(pixels.Channels());
    for (std::size_t i = 0; i < indices_.size(); ++i) {
        const unsigned index = indices_[i];
        const Colour colour = index < plan_.palette.size() ? plan_.palette[index] : Colour{};
        unsigned char* const pixel = pixels.bytes.data() + i * channels;
        pixel[0] = colour.red;
        pixel[1] = colour.green;
        pixel[2] = colour.blue;
        if (channels == 4) pixel[3] = IsEqual(index, plan_.nodata[0]) ? 0 : std::min(pixel[3], colour.alpha);
    }
}

void LayerReader::ReadDirect(const TileWindow& window, Pixels& pixels) {
    std::vector<int> bands = plan_.colours;
    const bool alpha = HasAlpha(pixels.form);
    const bool alongside = alpha && plan_.alpha != 0 &&
                           layer_.Dataset().GetRasterBand(plan_.alpha)->GetRasterDataType() == plan_.type;
    if (alongside) bands.push_back(plan_.alpha);
    if (alpha && !alongside) {
        ReadWindow(layer_.Dataset(), bands, window, Resample::Bilinear, pixels.bytes.data(),
                   Interleaved(pixels));
        ReadAlpha(window, pixels);
    } else {
        ahead_.Read(layer_, bands, plan_.type, window, Resample::Bilinear, pixels.bytes.data());
    }
    if (alpha && plan_.HasNodata()) ClearNodata(pixels);
}

void LayerReader::ReadStretched(const TileWindow& window, Pixels& pixels) {
    const std::size_t colours = plan_.colours.size();
    const auto channels = static_cast<std::size_t>(pixels.Channels());
    const bool alpha = HasAlpha(pixels.form);
    const Stretch& stretch = LayerStretch();
    if (alpha) ReadAlpha(window, pixels);
    cells_.resize(pixels.Count() * colours);
    const std::size_t cell = colours * sizeof(double);
    ReadWindow(layer_.Dataset(), plan_.colours, window, Resample::Bilinear, cells_.data(),
               {.type = GDT_Float64,
                .pixel = cell,
                .line = cell * static_cast<std::size_t>(pixels.width),
                .band = sizeof(double)});
    for (std::size_t i = 0; i < pixels.Count(); ++i) {
        bool empty = true;
        for (std::size_t c = 0; c < colours; ++c) {
            const double value = cells_[i * colours + c];
            const bool hole = IsHole(value, plan_.nodata[c], plan_.type);
            pixels.bytes[i * channels + c] = hole ? 0 : stretch(value);
            empty = empty && hole;
        }
        if (alpha && empty) SetAlpha(pixels, i, 0);
    }
}

/// Fills the alpha channel from the alpha band or the mask, opaque without either.
void LayerReader::ReadAlpha(const TileWindow& window, Pixels& pixels) {
    if (plan_.alpha == 0 && !plan_.mask) {
        for (std::size_t i = 0; i < pixels.Count(); ++i) SetAlpha(pixels, i, Opaque(pixels.depth));
        return;
    }
    GDALDataset& dataset = layer_.Dataset();
    GDALRasterBand& band = plan_.mask ? *dataset.GetRasterBand(plan_.colours[0])->GetMaskBand()
                                      : *dataset.GetRasterBand(plan_.alpha);
    const unsigned full = !plan_.mask && band.GetRasterDataType() == GDT_UInt16 ? 65535 : 255;
    std::vector<std::uint16_t> values(pixels.Count());
    ReadWindow(band, window, plan_.mask ? Resample::Nearest : Resample::Bilinear, values.data(),
               {.type = GDT_UInt16});
    const unsigned opaque = Opaque(pixels.depth);
    for (std::size_t i = 0; i < values.size(); ++i) {
        SetAlpha(pixels, i, (std::min<unsigned>(values[i], full) * opaque + full / 2) / full);
    }
}

void LayerReader::ClearNodata(Pixels& pixels) const {
    const int colours = static_cast<int>(plan_.colours.size());
    for (std::size_t i = 0; i < pixels.Count(); ++i) {
        bool empty = true;
        for (int c = 0; c < colours && empty; ++c) {
            empty = IsEqual(Channel(pixels, i, c), plan_.nodata[static_cast<std::size_t>(c)]);
        }
        if (empty) SetAlpha(pixels, i, 0);
    }
}

void LayerReader::SetTransparentColour(Pixels& pixels) const {
    if (HasAlpha(pixels.form) || !plan_.HasNodata()) return;
    std::array<std::uint16_t, 3> colour{};
    for (std::size_t c = 0; c < plan_.nodata.size(); ++c) {
        const double value = *plan_.nodata[c];
        if (!(value >= 0 && value <= Opaque(pixels.depth)) || value != std::floor(value)) return;
        colour[c] = static_cast<std::uint16_t>(value);
    }
    pixels.transparent = colour;
}

}  // namespace orvo::gdal
