// clsTileImage: which raster it works on and where its picture lives; folders as raster workspaces.
#include "errorreport/Procedure.h"
#include "platform/Platform.h"
#include "support/Strings.h"
#include "support/Text.h"
#include "tileimage/clsTileImage.h"

namespace orvo {
namespace {

constexpr ProcedureText kImageLayer{
    "[clsTileImage] Public Property Set ImageLayer(NewValue As esriCarto.IRasterLayer)", "clsTileImage",
    "ImageLayer [SET]"};
constexpr ProcedureText kFullName{
    "[clsTileImage] Private Sub FullName(ByVal strImageName As String, blnIsGDB As Boolean)", "clsTileImage",
    "FullName()"};
constexpr ProcedureText kGetWorkspace{
    "[clsTileImage] Public Function GetWorkspace(strDir As String) As esriDataSourcesRaster.IRasterWorkspace",
    "clsTileImage", "GetWorkspace"};

constexpr Integer kTextMissingImage = 100;
constexpr Integer kTextMessageTitle = 400;
constexpr const char* kPersonalGeodatabase = ".mdb";
constexpr const char* kFileGeodatabaseFormat = "FGDBR";

/// Whether the name runs through a personal geodatabase file that exists. The look at the disk is made also
/// where the name holds no such file; its answer then does not count.
bool IsInPersonalGeodatabase(const std::string& name) {
    const auto found = name.find(kPersonalGeodatabase);
    const bool named = found != std::string::npos;
    const auto files = platform::Create(platform::Current().newFileSystemObject);
    const bool exists = files->FileExists(named ? name.substr(0, found + 4) : Left(name, 3));
    return named && exists;
}

std::string FormatNameOf(IRasterLayer& layer) {
    const auto raster = layer.Raster();
    const auto dataset = Object(raster).RasterDataset();
    return Object(dataset).FormatName();
}

Point MeanCellSizeOf(IRasterLayer& layer) {
    const auto raster = layer.Raster();
    return Object(raster).MeanCellSize();
}

}  // namespace

void clsTileImage::ImageLayer(const std::shared_ptr<IRasterLayer>& NewValue, const std::string& FileName) {
    Procedure<void>(kImageLayer).Run([&](Statements& run) {
        std::string sourceName;
        bool blnIsGDB = false;
        run([&] { imageLayer_ = NewValue; });
        if (run.Test([&] { return NewValue == nullptr; })) return;
        if (run.Test([&] { return !FileName.empty(); })) {
            run([&] { sourceName = FileName; });
        } else {
            run([&] { sourceName = Object(NewValue).FilePath(); });
        }
        if (run.Test([&] { return Object(NewValue).IsInGeodatabase(); })) {
            run([&] { blnIsGDB = true; });
            run([&] { sourceName = AfterLast(sourceName, '\\'); });
            run([&] { sourceName = AfterLast(sourceName, '.'); });
        }
        if (run.Test([&] { return IsInPersonalGeodatabase(sourceName); })) {
            run([&] { blnIsGDB = true; });
            run([&] { sourceName = AfterLast(sourceName, '\\'); });
        }
        if (run.Test([&] { return FormatNameOf(Object(NewValue)) == kFileGeodatabaseFormat; })) {
            run([&] { blnIsGDB = true; });
        }
        run([&] { FullName(sourceName, blnIsGDB); });
        // A rejected image still gets its extent and cell size.
        run([&] { extentXMin_ = Object(Object(NewValue).Extent()).XMin(); });
        run([&] { extentYMax_ = Object(Object(NewValue).Extent()).YMax(); });
        run([&] { cellSizeX_ = MeanCellSizeOf(Object(NewValue)).X; });
        run([&] { cellSizeY_ = MeanCellSizeOf(Object(NewValue)).Y; });
    });
}

void clsTileImage::FullName(const std::string& strImageName, bool blnIsGDB) {
    Procedure<void>(kFullName, Armed::BeforeEntry).Run([&](Statements& run) {
        std::shared_ptr<IFileSystemObject> files;
        run([&] { imageName_ = strImageName; });
        run([&] { files = platform::Create(platform::Current().newFileSystemObject); });
        if (run.Test([&] {
                const bool isFile = Object(files).FileExists(strImageName);
                const bool isFolder = Object(files).FolderExists(strImageName);
                return !isFile && !isFolder && !blnIsGDB;
            })) {
            run([&] {
                Object(platform::Current().desktop)
                    .MessageBox(Text(kTextMissingImage) + "\r\n" + strImageName, Text(kTextMessageTitle),
                                MessageIcon::Critical, MessageButtons::OK);
            });
            run([&] { imageName_.clear(); });
        } else {
            run([&] { imageName_ = Object(files).GetFileName(strImageName); });
            run([&] { imagePath_ = Object(files).GetAbsolutePathName(strImageName); });
            run([&] { workingExtension_ = LCase(Object(files).GetExtensionName(strImageName)); });
        }
    });
}

std::shared_ptr<IRasterWorkspace> clsTileImage::GetWorkspace(const std::string& strDir) {
    using Result = std::shared_ptr<IRasterWorkspace>;
    return Procedure<Result>(kGetWorkspace).Run([&](Statements& run, Result& result) {
        std::shared_ptr<IRasterWorkspaceFactory> factory;
        run([&] { factory = platform::Create(platform::Current().newRasterWorkspaceFactory); });
        run([&] {
            const auto workspace = Object(factory).OpenFromFile(strDir, 0);
            auto rasters = std::dynamic_pointer_cast<IRasterWorkspace>(workspace);
            if (workspace && !rasters) throw RuntimeError(Fault::TypeMismatch);
            result = std::move(rasters);
        });
        run([&] { factory.reset(); });
    });
}

}  // namespace orvo
