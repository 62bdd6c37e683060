// Runs the fuzz target without a fuzzer's runtime: known geometries, mutated at random, for a bounded time.
//   wkb_fuzz_driver [SECONDS [SEED]]
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

class Seeds {
  public:
    Seeds() {
        Begin(1).Numbers({5, 5});
        Begin(1001).Numbers({5, 5, 5});
        Begin(0x80000001).Numbers({5, 5, 5});
        Begin(0x20000001).Count(4326).Numbers({5, 5});
        Begin(2).Count(3).Numbers({-5, 5, 15, 5, 10, 0});
        Begin(3002).Count(2).Numbers({-5, 5, 1, 2, 15, 5, 3, 4});
        Begin(3).Count(2).Count(5).Numbers({-1, -1, 15, 0, 15, 12, 0, 10, -1, -1});
        Count(4).Numbers({2, 2, 4, 2, 4, 4, 2, 2});
        Begin(3).Count(1).Count(5).Numbers({-2, 2, 12, 8, 12, 2, -2, 8, -2, 2});  // crosses itself
        Begin(4).Count(2);
        Part(1).Numbers({1, 1});
        Part(1).Numbers({10, 10});
        Begin(6).Count(2);
        Part(3).Count(1).Count(4).Numbers({0, 0, 10, 0, 10, 10, 0, 0});
        Part(3).Count(1).Count(4).Numbers({20, 20, 30, 20, 30, 30, 20, 20});
        Begin(7).Count(1);
        Part(1).Numbers({1, 1});
        Begin(3).Count(0xffffffff);
    }
    const std::vector<Bytes>& All() const { return all_; }

  private:
    Seeds& Begin(std::uint32_t type) {
        all_.emplace_back();
        return Part(type);
    }
    Seeds& Part(std::uint32_t type) {
        all_.back().push_back(1);
        return Count(type);
    }
    Seeds& Count(std::uint32_t count) {
        for (unsigned n = 0; n < 32; n += 8) all_.back().push_back(static_cast<std::uint8_t>(count >> n));
        return *this;
    }
    Seeds& Numbers(std::initializer_list<double> numbers) {
        for (const double number : numbers) {
            const auto* bytes = reinterpret_cast<const std::uint8_t*>(&number);
            all_.back().insert(all_.back().end(), bytes, bytes + sizeof number);
        }
        return *this;
    }
    std::vector<Bytes> all_;
};

void Mutate(Bytes& bytes, std::mt19937& random) {
    const auto below = [&](std::size_t limit) { return limit == 0 ? 0 : random() % limit; };
    for (std::size_t n = 1 + below(4); n > 0 && !bytes.empty(); --n) {
        const std::size_t at = below(bytes.size());
        switch (below(6)) {
            case 0:
                bytes[at] = static_cast<std::uint8_t>(random());
                break;
            case 1:
                bytes[at] ^= static_cast<std::uint8_t>(1U << below(8));
                break;
            case 2:
                bytes.resize(at);
                break;
            case 3:
                bytes[at] = static_cast<std::uint8_t>(below(2) == 0 ? 0 : 255);
                break;
            case 4: {  // one coordinate takes another's place
                const std::size_t from = below(bytes.size());
                for (std::size_t i = 0; i < 8 && at + i < bytes.size() && from + i < bytes.size(); ++i)
                    bytes[at + i] = bytes[from + i];
                break;
            }
            default:
                bytes.insert(bytes.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end());
                break;
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
    const std::vector<Bytes> seeds = Seeds().All();
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
