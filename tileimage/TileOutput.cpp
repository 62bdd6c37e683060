// clsTileImage: an exported TIFF becomes a web image.
#include <utility>

#include "errorreport/Procedure.h"
#include "platform/Platform.h"
#include "tileimage/TileNames.h"
#include "tileimage/clsTileImage.h"

namespace orvo {
namespace {
constexpr ProcedureText kSaveTIFFToWWW{
    "[clsTileImage] Private Function SaveTIFFToWWW(ByVal strFromAbsolutePathName As String) As String",
    "clsTileImage", "SaveTIFFToWWW"};
}  // namespace

/// Converts the TIFF under a new free name and removes it with its world and side files (".aux.xml" stays).
/// Returns the path of the web image, empty where nothing was converted.
std::string clsTileImage::SaveTIFFToWWW(const std::string& strFromAbsolutePathName) {
    return Procedure<std::string>(kSaveTIFFToWWW).Run([&](Statements& run, std::string& result) {
        std::shared_ptr<IFileSystemObject> files;
        std::shared_ptr<IUtilTools> tools;
        std::shared_ptr<IRasterConvert> convert;
        std::string baseName;
        std::string extension;
        std::string target;
        std::string stem;
        bool converted = false;
        run([&] { files = platform::Create(platform::Current().newFileSystemObject); });
        run([&] { tools = platform::Create(platform::Current().newUtilTools); });
        run([&] { convert = platform::Create(platform::Current().newRasterConvert); });
        run([&] { baseName = TileBaseName(); });
        if (run.Test([&] { return strFromAbsolutePathName.empty(); })) return;
        if (run.Test([&] {
                return workingExtension_ == "jpg" || workingExtension_ == "png" || workingExtension_ == "gif";
            })) {
            run([&] { extension = "." + workingExtension_; });
        } else {
            run([&] { extension = "." + graphicFormat_; });
        }
        run([&] { target = Object(tools).GetFreeFileName(savePath_, baseName, {"jpg", "png", "gif"}); });
        run([&] { target = target + extension; });
        run([&] {
            converted = Object(convert).ConvertExtern(graphicConvertProg_, strFromAbsolutePathName, target,
                                                      graphicQuality_, nullptr, true);
        });
        if (!run.Test([&] { return converted; })) return;
        run([&] { result = target; });
        if (!run.Test(
                [&] { return Object(files).GetParentFolderName(strFromAbsolutePathName) == savePath_; })) {
            return;
        }
        run([&] { stem = StemOf(Object(files), strFromAbsolutePathName); });
        for (const char* suffix : {".tfw", ".tif", ".aux", ".rrd"}) {
            if (run.Test([&] { return Object(files).FileExists(stem + suffix); })) {
                run([&] { Object(files).DeleteFile(stem + suffix, true); });
            }
        }
    });
}

}  // namespace orvo
