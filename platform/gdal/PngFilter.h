// The row filters of PNG.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace orvo::gdal {

/// Filters the rows of one image in order and keeps, for each, the filter whose bytes have the least sum of
/// magnitudes (as signed bytes), which is what compresses best on imagery.
class PngFilter {
  public:
    /// @param pixelBytes 1 to 8
    void Start(std::size_t rowBytes, std::size_t pixelBytes);
    /// The row as it goes into the stream: the filter's number and the filtered bytes. Valid until the next
    /// call.
    std::span<const unsigned char> Filter(const unsigned char* row);
    /// The same with filter 0, which leaves the bytes as they are.
    std::span<const unsigned char> Keep(const unsigned char* row);

  private:
    std::size_t rowBytes_ = 0;
    std::size_t pixelBytes_ = 0;
    std::vector<unsigned char> row_;  // the current row and the one above, each behind a pixel of zeros
    std::vector<unsigned char> above_;
    std::vector<unsigned char> best_;  // filter number and bytes
    std::vector<unsigned char> candidate_;
};

}  // namespace orvo::gdal
