#include "platform/windows/imaging/Resample.h"

#include <algorithm>
#include <cmath>

namespace orvo::windows {
namespace {

/// The cells of one axis that make up one pixel, and how much each counts; weights add up to 1.
struct Mix {
    int first = 0;
    std::vector<float> weights;
};

/// The whole cells of an axis that a range with its neighbours touches.
struct Cells {
    int first;
    int count;
};

Cells Touched(double from, double to, int pixels, int size) {
    const double reach = std::max(1.0, (to - from) / pixels);
    const int first = std::clamp(static_cast<int>(std::floor(from - reach)), 0, size - 1);
    const int last = std::clamp(static_cast<int>(std::ceil(to + reach)), first + 1, size);
    return {first, last - first};
}

/// For each pixel of an axis the cells that it shows, counted from the first one touched.
std::vector<Mix> Mixes(double from, double to, int pixels, Cells cells, bool nearest) {
    constexpr double kCentre = 0.5;
    const double step = (to - from) / pixels;
    const double reach = std::max(1.0, step);
    std::vector<Mix> mixes(static_cast<std::size_t>(pixels));
    for (int pixel = 0; pixel < pixels; ++pixel) {
        Mix& mix = mixes[static_cast<std::size_t>(pixel)];
        const double centre = from + (pixel + kCentre) * step - cells.first;
        const int under = std::clamp(static_cast<int>(std::floor(centre)), 0, cells.count - 1);
        if (nearest) {
            mix = {under, {1.0F}};
            continue;
        }
        mix.first = std::clamp(static_cast<int>(std::floor(centre - reach + kCentre)), 0, under);
        const int last =
            std::clamp(static_cast<int>(std::ceil(centre + reach - kCentre)), under, cells.count - 1);
        double sum = 0;
        for (int cell = mix.first; cell <= last; ++cell) {
            const double weight = std::max(0.0, 1 - std::abs(cell + kCentre - centre) / reach);
            mix.weights.push_back(static_cast<float>(weight));
            sum += weight;
        }
        for (float& weight : mix.weights) weight = static_cast<float>(weight / sum);
    }
    return mixes;
}

/// Colours count by their opacity.
std::vector<float> Weighted(const Pixels& pixels) {
    std::vector<float> samples(pixels.samples.begin(), pixels.samples.end());
    if (pixels.kind != Pixels::Kind::Bgra) return samples;
    for (std::size_t at = 0; at < samples.size(); at += 4)
        for (std::size_t i = 0; i < 3; ++i) samples[at + i] *= samples[at + 3] / 255;
    return samples;
}

void StorePixel(const std::vector<float>& sum, std::uint8_t* to) {
    const bool alpha = sum.size() == 4;
    const float opacity = alpha ? sum[3] / 255 : 1;
    for (std::size_t i = 0; i < sum.size(); ++i) {
        const float value = i == 3 ? sum[i] : opacity > 0 ? sum[i] / opacity : 0;
        to[i] = static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
    }
}

/// Mixes the cells of each row, then the rows.
Pixels Mixed(const Pixels& cells, const std::vector<Mix>& across, const std::vector<Mix>& down) {
    Pixels result(cells.kind, static_cast<int>(across.size()), static_cast<int>(down.size()));
    const std::size_t count = cells.SampleCount();
    const auto columns = static_cast<std::size_t>(cells.columns);
    const std::vector<float> samples = Weighted(cells);
    std::vector<float> line(columns * count);
    std::vector<float> sum(count);
    for (std::size_t y = 0; y < down.size(); ++y) {
        std::ranges::fill(line, 0.0F);
        for (std::size_t k = 0; k < down[y].weights.size(); ++k) {
            const float* row = &samples[(static_cast<std::size_t>(down[y].first) + k) * line.size()];
            for (std::size_t i = 0; i < line.size(); ++i) line[i] += row[i] * down[y].weights[k];
        }
        for (std::size_t x = 0; x < across.size(); ++x) {
            std::ranges::fill(sum, 0.0F);
            for (std::size_t k = 0; k < across[x].weights.size(); ++k) {
                const float* cell = &line[(static_cast<std::size_t>(across[x].first) + k) * count];
                for (std::size_t i = 0; i < count; ++i) sum[i] += cell[i] * across[x].weights[k];
            }
            StorePixel(sum, result.At(static_cast<int>(x), static_cast<int>(y)));
        }
    }
    return result;
}

}  // namespace

Pixels ReadWindow(ImageSource& source, const raster::TileWindow& window) {
    const auto& [left, top, right, bottom, columns, rows] = window;
    if (window.IsExact()) return source.Read(static_cast<int>(left), static_cast<int>(top), columns, rows);
    const Cells x = Touched(left, right, columns, source.Columns());
    const Cells y = Touched(top, bottom, rows, source.Rows());
    const bool nearest = source.HasPalette();
    return Mixed(source.Read(x.first, y.first, x.count, y.count), Mixes(left, right, columns, x, nearest),
                 Mixes(top, bottom, rows, y, nearest));
}

}  // namespace orvo::windows
