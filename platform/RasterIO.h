// Reading and writing pixels, as the utility library asks a raster library for it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Raster.h"
#include "platform/Utility.h"

namespace orvo {

/// What the bands of an image mean, as far as a converter must be told.
struct ImageLayout {
    Long width = 0;  ///< pixels
    Long height = 0;
    int bands = 1;         ///< alpha included
    bool palette = false;  ///< the only band holds indexes of a colour table
    bool inks = false;     ///< four bands are cyan, magenta, yellow and black
};

/// One object serves one conversion service: a source stays open as long as the object lives.
class IRasterIO {
  public:
    virtual ~IRasterIO() = default;

    /// Writes the layer's part inside `envelope` as `width` × `height` pixels; contract as in IRasterConvert.
    /// No file stands under the returned name before it is complete.
    /// @param reason why nothing was written, where the result is empty
    virtual std::string ExportRasterWindow(IRasterLayer& layer, const std::string& targetFile,
                                           Integer quality, const IEnvelope& envelope, Long width,
                                           Long height, std::string& reason) = 0;

    /// Copies a window of an image file, cell by cell, into an uncompressed TIFF with the source's bands,
    /// type, palette and alpha. A window that reaches past the raster is cut back to it, in `window` too.
    /// @param reason why nothing was written, where the result is false
    virtual bool CutWindow(const std::string& sourceFile, PixelWindow& window, const std::string& tiffFile,
                           std::string& reason) = 0;

    /// The layout of an image file; nothing where it cannot be read.
    virtual std::optional<ImageLayout> LayoutOf(const std::string& file) = 0;

    /// Reads an image file whole. @return why it is no image of `width` × `height` pixels; empty where it is
    /// one, and where its extension is none that this library knows
    virtual std::string CheckImage(const std::string& file, Long width, Long height) = 0;
};

}  // namespace orvo
