// Image files that the raster library itself writes, made in memory.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "platform/gdal/Pixels.h"
#include "platform/gdal/ReadWindow.h"

class GDALDataset;

namespace orvo::gdal {

/// A file of the raster library in memory, removed with this object.
class FileInMemory {
  public:
    FileInMemory();
    ~FileInMemory();
    FileInMemory(const FileInMemory&) = delete;
    FileInMemory& operator=(const FileInMemory&) = delete;

    const std::string& Name() const { return name_; }
    std::span<const unsigned char> Bytes() const;

  private:
    std::string name_;
};

/// An image of 8 bits as a dataset in memory. Fails with the library's text.
std::unique_ptr<GDALDataset> DatasetOf(const Pixels& pixels);

/// Each fails with the library's text where the format does not hold the image.
void WriteGif(const Pixels& indexed, const FileInMemory& file);
/// Indexed, grey or RGB.
void WriteBmp(const Pixels& pixels, const FileInMemory& file);
/// Any 8-bit form, uncompressed, without georeference.
void WriteTiff(const Pixels& pixels, const FileInMemory& file);

}  // namespace orvo::gdal
