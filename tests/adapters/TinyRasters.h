// Pixel reading and writing without a raster library: every image is a small grey TIFF.
#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "platform/RasterIO.h"
#include "platform/gdal/RasterIO.h"
#include "support/SystemPath.h"
#include "tests/adapters/TempFolder.h"

namespace orvo {

/// An uncompressed grey TIFF, one byte per pixel, that shows a gradient.
inline std::string TinyTiff(Long width, Long height) {
    std::string bytes("II*\0\10\0\0\0", 8);
    const auto put = [&](std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i));
    };
    const auto w = static_cast<std::uint32_t>(width);
    const auto h = static_cast<std::uint32_t>(height);
    // Width, height, bits, no compression, black is zero, strip offset, samples, rows per strip, strip size.
    const std::array<std::array<std::uint32_t, 2>, 9> entries{
        {{256, w}, {257, h}, {258, 8}, {259, 1}, {262, 1}, {273, 122}, {277, 1}, {278, h}, {279, w * h}}};
    put(entries.size(), 2);
    for (const auto& [tag, value] : entries) {
        put(tag, 2);
        put(4, 2);  // 32-bit
        put(1, 4);
        put(value, 4);
    }
    put(0, 4);
    for (std::uint32_t i = 0; i < w * h; ++i) put(i * 255 / (w * h), 1);
    return bytes;
}

/// Sources are rasters of 100 × 80 pixels; those whose name holds "broken" cannot be read.
class TinyRasters : public IRasterIO {
  public:
    std::string ExportRasterWindow(IRasterLayer&, const std::string& targetFile, Integer, const IEnvelope&,
                                   Long width, Long height, std::string& reason) override {
        if (targetFile.find("broken") != std::string::npos) reason = "the layer cannot be read";
        if (!reason.empty()) return {};
        std::string path = std::filesystem::path(targetFile).replace_extension(".tif").string();
        std::ofstream(SystemPath(path), std::ios::binary) << TinyTiff(width, height);
        return path;
    }
    bool CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                   std::string& reason) override {
        if (sourceFile.find("broken") != std::string::npos) reason = "the source cannot be read";
        window.width = std::min(window.width, 100 - window.column);
        window.height = std::min(window.height, 80 - window.row);
        std::ofstream(tiffFile, std::ios::binary) << TinyTiff(window.width, window.height);
        return reason.empty();
    }
    std::optional<ImageLayout> LayoutOf(const std::string& file) override {
        return gdal::NewRasterIO()->LayoutOf(file);
    }
};

}  // namespace orvo
