#include "platform/utility/TiffLayout.h"

#include <array>
#include <cstdint>
#include <fstream>

namespace orvo::utility {
namespace {

constexpr std::uint32_t kPhotometric = 262;
constexpr std::uint32_t kSamplesPerPixel = 277;

/// Numbers of a TIFF in the byte order that its head names. All are 0 behind a failure.
class Reader {
  public:
    explicit Reader(const std::filesystem::path& file) : stream_(file, std::ios::binary) {
        const std::uint32_t order = Number(2);
        little_ = order == 0x4949;
        known_ = (little_ || order == 0x4D4D) && Number(2) == 42;
    }
    bool IsTiff() const { return known_; }
    void Seek(std::uint32_t offset) { stream_.seekg(offset); }

    std::uint32_t Number(std::size_t bytes) {
        std::array<char, 4> buffer{};
        if (!stream_.read(buffer.data(), static_cast<std::streamsize>(bytes))) return 0;
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < bytes; ++i) {
            const std::size_t at = little_ ? bytes - 1 - i : i;
            number = number << 8 | static_cast<unsigned char>(buffer.at(at));
        }
        return number;
    }

  private:
    std::ifstream stream_;
    bool little_ = true;
    bool known_ = false;
};

}  // namespace

std::optional<TiffLayout> ReadTiffLayout(const std::filesystem::path& file) {
    Reader reader(file);
    if (!reader.IsTiff()) return std::nullopt;
    reader.Seek(reader.Number(4));
    TiffLayout layout;
    for (std::uint32_t left = reader.Number(2); left > 0; --left) {
        const std::uint32_t tag = reader.Number(2);
        const std::uint32_t type = reader.Number(2);
        reader.Number(4);  // one value, held in the entry itself
        const std::uint32_t value = type == 3 ? reader.Number(2) : reader.Number(4);
        if (type == 3) reader.Number(2);
        if (tag == kPhotometric) layout.meaning = static_cast<int>(value);
        if (tag == kSamplesPerPixel) layout.samples = static_cast<int>(value);
    }
    return layout;
}

}  // namespace orvo::utility
