// clsTileImage: the tiling run.
#include <array>
#include <utility>

#include "errorreport/Procedure.h"
#include "platform/Platform.h"
#include "support/Arithmetic.h"
#include "support/Strings.h"
#include "support/Text.h"
#include "tileimage/TileNames.h"
#include "tileimage/clsTileImage.h"

namespace orvo {
namespace {

constexpr ProcedureText kTile{"[clsTileImage] Public Function Tile() As Boolean", "clsTileImage", "Tile"};

constexpr Long kMostTiles = 999;
constexpr Long kStepsPerTile = 3;
constexpr Integer kTextTooManyTiles = 103;
constexpr Integer kTextMessageTitle = 400;
constexpr const char* kStartText = "Tiling                       ";  // padded to 29 characters

bool IsPlainImage(const std::string& extension) {
    const std::string lower = LCase(extension);
    return lower == "png" || lower == "jpg" || lower == "gif" || lower == "tif" || lower == "bmp";
}

/// The smaller of a tile's full size and what is left of the raster.
Long CutTo(Long tilePixels, Long size, Long offset) {
    const Long remainder = Subtract(size, offset);
    return tilePixels > remainder ? remainder : tilePixels;
}

/// A statement whose failure is passed over without a word.
template <class Statement>
void Quietly(Statement&& statement) {
    try {
        statement();
    } catch (...) {
        // Goes on with the next statement.
    }
}

}  // namespace

struct clsTileImage::Run {
    std::shared_ptr<IUtilTools> tools;
    std::shared_ptr<IRasterConvert> convert;
    std::shared_ptr<IFileSystemObject> files;
    Long columns = 0;  ///< of the raster
    Long rows = 0;
    Long columnOffset = 0;  ///< of the current cell, pixels
    Long rowOffset = 0;
    double left = 0;  ///< of the current cell, map units, accumulated cell by cell
    double top = 0;
    // Of the current cell; where a statement that sets one is skipped, the previous cell's value stays.
    Long w = 0;
    Long h = 0;
    std::string baseName;
    std::string outputName;
};

/// What is made anew for each cell.
struct clsTileImage::Cell {
    std::shared_ptr<IEnvelope> envelope;
    PixelWindow window;
};

template <class MakeText>
void clsTileImage::Step(Statements& run, const MakeText& text, int line) {
    run([&] { CreateMessageText(text(), 0, true); }, line);
}

bool clsTileImage::Tile() {
    return Procedure<bool>(kTile).Run([&](Statements& run, bool& result) {
        if (run.Test([&] { return imageName_.empty() || tilePixelWidth_ == 0 || tilePixelHeight_ == 0; }))
            return;
        Run job;
        run([&] { job.tools = platform::Create(platform::Current().newUtilTools); });
        run([&] { job.convert = platform::Create(platform::Current().newRasterConvert); });
        run([&] { job.files = platform::Create(platform::Current().newFileSystemObject); });
        run([&] { job.columns = Object(Object(imageLayer_).Raster()).Width(); });
        run([&] { job.rows = Object(Object(imageLayer_).Raster()).Height(); });
        if (run.Test([&] { return Multiply(tileCountX_, tileCountY_) > kMostTiles; })) {
            run([&] {
                Object(platform::Current().desktop)
                    .MessageBox(Text(kTextTooManyTiles), Text(kTextMessageTitle), MessageIcon::Critical,
                                MessageButtons::OK);
            });
            return;
        }
        run([&] { job.left = extentXMin_; });
        run([&] { job.top = extentYMax_; });
        run([&] {
            CreateMessageText(kStartText + imageName_,
                              Multiply(Multiply(tileCountX_, tileCountY_), kStepsPerTile), false);
        });
        WalkGrid(run, job);
        run([&] { CreateMessageText("", 0, false); });
        run([&] { result = true; });
    });
}

void clsTileImage::WalkGrid(Statements& run, Run& job) {
    while (run.Test([&] { return job.rowOffset < job.rows; })) {
        run([&] { job.h = CutTo(tilePixelHeight_, job.rows, job.rowOffset); });
        while (run.Test([&] { return job.columnOffset < job.columns; })) TileCell(run, job);
        run([&] { job.rowOffset = Add(job.rowOffset, tilePixelHeight_); });
        run([&] { job.columnOffset = 0; });
        run([&] { job.left = extentXMin_; });
        run([&] { job.top = Finite(job.top - job.h * cellSizeY_); });
    }
}

void clsTileImage::TileCell(Statements& run, Run& job) {
    Cell cell;
    Step(run, [&] { return "Tiling " + imageName_; });
    run([&] { job.w = CutTo(tilePixelWidth_, job.columns, job.columnOffset); });
    run([&] { job.baseName = TileBaseName(); });
    run([&] { cell.envelope = platform::Create(platform::Current().newEnvelope); });
    run([&] { Object(cell.envelope).XMin(job.left); });
    run([&] { Object(cell.envelope).XMax(Finite(job.w * cellSizeX_ + job.left)); });
    run([&] { Object(cell.envelope).YMax(job.top); });
    run([&] { Object(cell.envelope).YMin(Finite(job.top - job.h * cellSizeY_)); });
    run([&] { cell.window = {job.columnOffset, job.rowOffset, job.w, job.h}; });
    if (ClipCell(run, cell) && !TileExtern(run, job, cell)) TileByPlatform(run, job, cell);
    run([&] { job.columnOffset = Add(job.columnOffset, tilePixelWidth_); });
    run([&] { job.left = Finite(job.left + job.w * cellSizeX_); });
}

/// Cuts the cell back to the clip area; false where the two do not meet. The pixel size of the platform's
/// export stays that of the full tile.
bool clsTileImage::ClipCell(Statements& run, Cell& cell) {
    bool inside = true;
    if (!run.Test([&] { return clipEnvelope_ != nullptr; })) return inside;
    std::shared_ptr<IEnvelope> copy;
    run([&] { copy = Object(clipEnvelope_).Clone(); });
    run([&] { Object(copy).Intersect(Object(cell.envelope)); });
    if (run.Test([&] { return Object(copy).IsEmpty(); })) {
        run([&] { inside = false; });
        return inside;
    }
    run([&] {
        const IEnvelope& tile = Object(cell.envelope);
        const IEnvelope& part = Object(copy);
        cell.window = {Add(cell.window.column, RoundUp(Divide(part.XMin() - tile.XMin(), cellSizeX_))),
                       Add(cell.window.row, RoundUp(Divide(tile.YMax() - part.YMax(), cellSizeY_))),
                       RoundUp(Divide(part.Width(), cellSizeX_)), RoundUp(Divide(part.Height(), cellSizeY_))};
    });
    run([&] { cell.envelope = copy; });
    return inside;
}

/// The external way: the window is cut out of the source file and converted. True where that gave the tile.
bool clsTileImage::TileExtern(Statements& run, Run& job, const Cell& cell) {
    bool converted = false;
    if (!run.Test([&] { return IsPlainImage(workingExtension_); })) {
        run([&] { workingExtension_ = LCase(graphicFormat_); });
        return converted;
    }
    Step(run, [] { return std::string("Tiling extern"); });
    if (run.Test([&] { return workingExtension_ == "tif" || workingExtension_ == "bmp"; })) {
        run([&] { workingExtension_ = LCase(graphicFormat_); });
    }
    run([&] {
        job.outputName = Object(job.tools).GetFreeFileName(savePath_, job.baseName, {workingExtension_});
    });
    Step(run, [&] { return "Tiling: Change to " + workingExtension_; });
    run([&] {
        converted = Object(job.convert)
                        .ConvertExtern(graphicConvertProg_, imagePath_, job.outputName, graphicQuality_,
                                       &cell.window, true);
    });
    // Looks for the full path although the keys are bare file names: kept, it always finds the name free.
    if (run.Test([&] { return converted && !Object(tileObjectDict_).Exists(job.outputName); })) {
        run([&] { AddTile(job, cell); });
    }
    return converted;
}

/// The platform way: the layer's part inside the envelope is exported, a TIFF converted in a second step.
void clsTileImage::TileByPlatform(Statements& run, Run& job, const Cell& cell) {
    run([&] {
        job.outputName =
            Object(job.tools).GetFreeFileName(savePath_, job.baseName, {"tif", "jpg", "png", "gif"});
    });
    if (run.Test([&] {
            const std::string lower = LCase(workingExtension_);
            return lower == "gif" || lower == "png" || workingExtension_.empty();
        })) {
        run([&] { workingExtension_ = LCase(graphicFormat_); });
    }
    run([&] { job.outputName = job.outputName + "." + workingExtension_; });
    Step(run, [&] { return "Tiling: Convert to " + UCase(workingExtension_); });
    run([&] {
        job.outputName = Object(job.convert)
                             .ExportRasterWindow(imageLayer_, job.outputName, graphicQuality_, nullptr,
                                                 cell.envelope, job.w, job.h);
    });
    Step(run, [&] { return "Tiling: Convert to " + UCase(workingExtension_); });
    if (run.Test([&] { return job.outputName.empty(); })) return;
    if (run.Test([&] { return UCase(Object(job.files).GetExtensionName(job.outputName)) == "TIF"; })) {
        Step(run, [] { return std::string("Tiling"); });
        run([&] { job.outputName = SaveTIFFToWWW(job.outputName); });
    } else {
        RemoveSideFiles(run, job, job.outputName);
    }
    if (run.Test([&] { return !job.outputName.empty(); })) run([&] { AddTile(job, cell); });
}

/// Removes what an export leaves beside its image. Failures of the removal itself are of no interest.
void clsTileImage::RemoveSideFiles(Statements& run, Run& job, const std::string& tileFile) {
    if (!run.Test([&] { return Object(job.files).GetParentFolderName(tileFile) == savePath_; })) return;
    std::string stem;
    Quietly([&] { stem = StemOf(Object(job.files), tileFile); });
    const auto remove = [&](const std::string& name, const char* suffix) {
        bool exists = true;
        Quietly([&] { exists = Object(job.files).FileExists(name + suffix); });
        if (exists) Quietly([&] { Object(job.files).DeleteFile(name + suffix, true); });
    };
    remove(stem, ".aux");
    remove(stem, ".rrd");
    remove(tileFile, ".aux.xml");
}

void clsTileImage::AddTile(const Run& job, const Cell& cell) {
    Object(tileObjectDict_).Add(Object(job.files).GetFileName(job.outputName), cell.envelope);
}

}  // namespace orvo
