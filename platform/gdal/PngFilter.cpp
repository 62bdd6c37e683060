#include "platform/gdal/PngFilter.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace orvo::gdal {
namespace {

/// Where a filter finds a byte's neighbours: left, above, above left.
struct Neighbours {
    const unsigned char* left;
    const unsigned char* above;
    const unsigned char* corner;
};

struct None {
    static unsigned char Predict(unsigned char, unsigned char, unsigned char) { return 0; }
};
struct Sub {
    static unsigned char Predict(unsigned char a, unsigned char, unsigned char) { return a; }
};
struct Up {
    static unsigned char Predict(unsigned char, unsigned char b, unsigned char) { return b; }
};
struct Average {
    static unsigned char Predict(unsigned char a, unsigned char b, unsigned char) {
        return static_cast<unsigned char>((a + b) / 2);
    }
};
struct Paeth {
    static unsigned char Predict(unsigned char a, unsigned char b, unsigned char c) {
        const auto distance = [](int x) { return static_cast<std::int16_t>(x < 0 ? -x : x); };
        const std::int16_t toA = distance(b - c);
        const std::int16_t toB = distance(a - c);
        const std::int16_t toC = distance(a + b - 2 * c);
        const unsigned char other = toB <= toC ? b : c;
        return toA <= toB && toA <= toC ? a : other;
    }
};

/// Filters `n` bytes and returns the sum of their magnitudes. Sums go over short runs, in 16 bits, so that
/// the loop becomes vector code.
template <class Filter>
std::size_t Apply(const unsigned char* __restrict row, const Neighbours& at, std::size_t n,
                  unsigned char* __restrict out) {
    constexpr std::size_t kRun = 256;
    std::size_t total = 0;
    for (std::size_t from = 0; from < n; from += kRun) {
        const std::size_t to = std::min(n, from + kRun);
        std::uint16_t sum = 0;
        for (std::size_t i = from; i < to; ++i) {
            const auto byte =
                static_cast<unsigned char>(row[i] - Filter::Predict(at.left[i], at.above[i], at.corner[i]));
            out[i] = byte;
            sum = static_cast<std::uint16_t>(sum + std::min(byte, static_cast<unsigned char>(-byte)));
        }
        total += sum;
    }
    return total;
}

}  // namespace

void PngFilter::Start(std::size_t rowBytes, std::size_t pixelBytes) {
    rowBytes_ = rowBytes;
    pixelBytes_ = pixelBytes;
    row_.assign(pixelBytes + rowBytes, 0);
    above_.assign(pixelBytes + rowBytes, 0);
    best_.assign(rowBytes + 1, 0);
    candidate_.assign(rowBytes + 1, 0);
}

std::span<const unsigned char> PngFilter::Filter(const unsigned char* row) {
    std::memcpy(row_.data() + pixelBytes_, row, rowBytes_);
    const unsigned char* const current = row_.data() + pixelBytes_;
    const Neighbours at{row_.data(), above_.data() + pixelBytes_, above_.data()};
    using Function = std::size_t (*)(const unsigned char*, const Neighbours&, std::size_t, unsigned char*);
    constexpr Function kFilters[] = {Apply<None>, Apply<Sub>, Apply<Up>, Apply<Average>, Apply<Paeth>};
    std::size_t least = SIZE_MAX;
    for (unsigned char number = 0; number < 5; ++number) {
        const std::size_t sum = kFilters[number](current, at, rowBytes_, candidate_.data() + 1);
        if (sum >= least) continue;
        least = sum;
        candidate_[0] = number;
        std::swap(best_, candidate_);
    }
    std::swap(row_, above_);
    return best_;
}

std::span<const unsigned char> PngFilter::Keep(const unsigned char* row) {
    best_[0] = 0;
    std::memcpy(best_.data() + 1, row, rowBytes_);
    return best_;
}

}  // namespace orvo::gdal
