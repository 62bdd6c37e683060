// The host product's utility library: language, free names, conversion and export, status display.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "platform/Raster.h"

namespace orvo {

/// Part of a source image in pixels, counted from its top left corner.
struct PixelWindow {
    Long column = 0;  ///< offset of the first column
    Long row = 0;     ///< offset of the first row
    Long width = 0;
    Long height = 0;
    bool operator==(const PixelWindow&) const = default;
};

class IUtilTools {
  public:
    virtual ~IUtilTools() = default;
    /// 0 (German), 10000 (English) or 20000 (French).
    virtual Integer GetLanguageOffset() = 0;
    /// A path in `folder` that begins with `baseName`, without extension, under which no file with any of
    /// the extensions exists. The name stays reserved, also against other processes, while this object lives.
    virtual std::string GetFreeFileName(const std::string& folder, const std::string& baseName,
                                        const std::vector<std::string>& extensions) = 0;
};

class IRasterConvert {
  public:
    virtual ~IRasterConvert() = default;

    /// Writes the layer's part inside `envelope` as an image of `width` × `height` pixels.
    /// @param targetFile full path; png, jpg, gif, bmp and tif are written as asked, else a tif beside it
    /// @param quality 1 to 100 for formats with losses, 0 for the default of 75
    /// @return the path written, which may carry another extension; empty where nothing was written, also
    /// where
    ///         the target is there already: a finished image is never replaced
    virtual std::string ExportRasterWindow(const std::shared_ptr<IRasterLayer>& layer,
                                           const std::string& targetFile, Integer quality,
                                           const std::shared_ptr<void>& reserved,
                                           const std::shared_ptr<IEnvelope>& envelope, Long width,
                                           Long height) = 0;

    /// Converts an image file, or one window of it, with an external program and waits for its end.
    /// @param program name or path of the program; empty gives False at once
    /// @param targetFile on success it holds the full path of the file written, extension included; one that
    /// is
    ///        there already is never replaced and gives False
    /// @param window the part to convert; a null pointer converts the whole image
    /// @param wait always true
    virtual bool ConvertExtern(const std::string& program, const std::string& sourceFile,
                               std::string& targetFile, Integer quality, const PixelWindow* window,
                               bool wait) = 0;
};

/// The host's display of texts and progress. Must tolerate more or fewer steps than announced.
class IStatusDisplay {
  public:
    virtual ~IStatusDisplay() = default;
    virtual void ShowMessage(const std::string& text) = 0;
    /// `step` false: the start (`maxValue` > 0, the number of steps) or the end (empty text, 0) of a display;
    /// `step` true: one step forward with a new text.
    virtual void ShowProgress(const std::string& text, Long maxValue, bool step) = 0;
};

}  // namespace orvo
