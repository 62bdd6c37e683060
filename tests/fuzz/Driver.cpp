// Runs the fuzz target without a fuzzer's runtime: known geometries, mutated at random, for a bounded time.
//   wkb_fuzz_driver [SECONDS [SEED]]
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "tests/tiling/GeosShapes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Every kind, as extended and as ISO WKB.
std::vector<Bytes> Seeds() {
    std::vector<Bytes> seeds{
        {1, 1, 0, 0, 0x20, 0xe6, 0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0x14, 0x40, 0, 0, 0, 0, 0, 0, 0x14, 0x40},
        {1, 3, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}};  // with a reference system; with too many rings
    for (const char* text :
         {"POINT (5 5)", "POINT Z (5 5 5)", "LINESTRING (-5 5, 15 5, 10 0)", "LINESTRING Z (-5 5 1, 15 5 3)",
          "POLYGON ((-1 -1, 15 0, 15 12, 0 10, -1 -1), (2 2, 4 2, 4 4, 2 2))",
          "POLYGON ((-2 2, 12 8, 12 2, -2 8, -2 2))",  // crosses itself
          "MULTIPOINT (1 1, 10 10)",
          "MULTIPOLYGON (((0 0, 10 0, 10 10, 0 0)), ((20 20, 30 20, 30 30, 20 20)))",
          "GEOMETRYCOLLECTION (POINT (1 1))"}) {
        seeds.push_back(orvo::geos::test::Bytes(*orvo::geos::test::FromText(text)));
        seeds.push_back(orvo::geos::test::Read(text)->ToWkb());
    }
    return seeds;
}

void Mutate(Bytes& bytes, std::mt19937& random) {
    const auto below = [&](std::size_t limit) { return limit == 0 ? 0 : random() % limit; };
    for (std::size_t n = 1 + below(4); n > 0 && !bytes.empty(); --n) {
        const std::size_t at = below(bytes.size());
        const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const auto value = static_cast<std::uint8_t>(random());
        const std::size_t kind = below(6);
        if (kind == 0) *place = value;
        if (kind == 1) *place ^= static_cast<std::uint8_t>(1U << below(8));
        if (kind == 2) bytes.resize(at);
        if (kind == 3) *place = static_cast<std::uint8_t>(below(2) == 0 ? 0 : 255);
        if (kind == 4) {  // one coordinate takes another's place
            const Bytes source = bytes;
            const std::size_t from = below(bytes.size());
            std::copy_n(source.begin() + static_cast<std::ptrdiff_t>(from),
                        std::min({std::size_t{8}, bytes.size() - at, bytes.size() - from}), place);
        }
        if (kind == 5) {
            const Bytes rest(place, bytes.end());
            bytes.insert(bytes.end(), rest.begin(), rest.end());
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::strtod(argv[1], nullptr) : 5;
    const unsigned seed =
        argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : std::random_device{}();
    std::printf("seed %u\n", seed);
    static_cast<void>(std::fflush(stdout));
    std::mt19937 random(seed);
    const std::vector<Bytes> seeds = Seeds();
    for (const Bytes& bytes : seeds) LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    long runs = 0;
    for (; std::chrono::steady_clock::now() < end; ++runs) {
        Bytes bytes = seeds[random() % seeds.size()];
        Mutate(bytes, random);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%ld inputs\n", runs);
    return 0;
}
