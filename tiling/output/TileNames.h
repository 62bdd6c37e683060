// What tiles are called: a pattern with fields for their places.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace orvo::tiling {

constexpr const char* kUsualTileNames = "r{row}_c{column}";

/// Literal text and the fields {source}, {row}, {column}, {x} and {y}; a "/" makes folders. Rows and columns
/// are padded with zeros to the digits of the last ones; x and y are the shortest numbers that read back the
/// same.
class TileNames {
  public:
    /// Of a tile: counted from 1 at the upper left corner of the grid, and that corner in map units.
    struct Place {
        std::int64_t row = 1;
        std::int64_t column = 1;
        double x = 0;
        double y = 0;
    };

    /// @param source what {source} stands for @param rows, columns of the whole grid
    /// Fails with UsageError where the pattern makes no names of files.
    TileNames(const std::string& pattern, std::string source, std::int64_t rows, std::int64_t columns);

    /// Without extension, relative to the output folder.
    std::string Of(const Place& place) const;
    /// Whether the pattern alone keeps all tiles of a grid apart.
    bool IsUnique() const;

  private:
    std::string pattern_, source_;
    std::size_t rowDigits_, columnDigits_;
};

/// Whether a name without extension may come from a pattern, for any place.
std::function<bool(const std::string& name)> NamesLike(const std::string& pattern, const std::string& source);

}  // namespace orvo::tiling
