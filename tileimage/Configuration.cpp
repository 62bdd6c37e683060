// clsTileImage: creation, settings and tile sizes.
#include "errorreport/Procedure.h"
#include "platform/Platform.h"
#include "support/Arithmetic.h"
#include "support/Strings.h"
#include "support/basApi.h"
#include "tileimage/clsTileImage.h"

namespace orvo {
namespace {

constexpr ProcedureText kInitialize{"[clsTileImage] Private Sub Class_Initialize()", "clsTileImage",
                                    "Class_Initialize"};
constexpr ProcedureText kTerminate{"[clsTileImage] Private Sub Class_Terminate()", "clsTileImage",
                                   "Class_Terminate"};
constexpr ProcedureText kClipEnvelope{
    "[clsTileImage] Public Property Set ClipEnvelope(ByRef objValue As esrigeometry.IEnvelope)",
    "clsTileImage", "ClipEnvelope [SET]"};
constexpr ProcedureText kTileObjectDict{
    "[clsTileImage] Public Property Get TileObjectDict() As Scripting.Dictionary", "clsTileImage",
    "TileObjectDict [GET]"};
constexpr ProcedureText kGraphicFormat{"[clsTileImage] Public Property Let GraphicFormat(NewValue As String)",
                                       "clsTileImage", "GraphicFormat [LET]"};
constexpr ProcedureText kGraphicConvertProg{
    "[clsTileImage] Public Property Let GraphicConvertProg(NewValue As String)", "clsTileImage",
    "GraphicConvertProg [LET]"};
constexpr ProcedureText kGraphicQuality{
    "[clsTileImage] Public Property Let GraphicQuality(NewValue As Integer)", "clsTileImage",
    "GraphicQuality [LET]"};
constexpr ProcedureText kStatusObject{"[clsTileImage] Public Property Set StatusObject(NewValue As Object)",
                                      "clsTileImage", "StatusObject [SET]"};
constexpr ProcedureText kSavePath{"[clsTileImage] Public Property Let SavePath(NewValue As String)",
                                  "clsTileImage", "SavePath [LET]"};
constexpr ProcedureText kTileWidth{"[clsTileImage] Public Property Let TileWidth(ByVal Width As Long)",
                                   "clsTileImage", "TileWidth [LET]"};
constexpr ProcedureText kTileHeight{"[clsTileImage] Public Property Let TileHeight(ByVal Height As Long)",
                                    "clsTileImage", "TileHeight [LET]"};

constexpr Integer kCompanyFolder = 1;
constexpr Integer kProductName = 9002;
constexpr const char* kShellFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

/// A setter without logic of its own: one statement that stores the value.
template <class Member, class Value>
void Store(const ProcedureText& text, Member& member, const Value& value) {
    Procedure<void>(text).Run([&](Statements& run) {
        run([&] {
            Member copy = value;
            member = std::move(copy);
        });
    });
}

IRaster& RasterOf(const std::shared_ptr<IRasterLayer>& layer, std::shared_ptr<IRaster>& raster) {
    raster = Object(layer).Raster();
    return Object(raster);
}

}  // namespace

clsTileImage::clsTileImage() {
    Procedure<void>(kInitialize).Run([&](Statements& run) {
        std::shared_ptr<IUtilTools> tools;
        std::string folder;
        run([&] { tools = platform::Create(platform::Current().newUtilTools); });
        run([&] { LangOffset() = Object(tools).GetLanguageOffset(); });
        run([&] { cellSizeX_ = -1; });
        run([&] { cellSizeY_ = -1; });
        run([&] { extentXMin_ = -1; });
        run([&] { extentYMax_ = -1; });
        run([&] { tileCountX_ = 1; });
        run([&] { tileCountY_ = 1; });
        run([&] { tileObjectDict_ = platform::Create(platform::Current().newDictionary); });
        run([&] { folder = TextOf(GetString(IRegistry::kCurrentUser, kShellFolders, "AppData")); });
        // The product's folder is looked up and, on purpose, not kept: nothing uses it.
        run([&] { folder = folder + "\\" + Text(kCompanyFolder) + "\\" + Text(kProductName); });
        run([&] { tools.reset(); });
    });
}

clsTileImage::~clsTileImage() {
    try {
        Procedure<void>(kTerminate).Run([&](Statements& run) {
            run([&] { imageLayer_.reset(); });
            run([&] { tileObjectDict_.reset(); });
        });
    } catch (...) {
        // A destructor lets nothing out; the members release what they still hold.
    }
}

void clsTileImage::ClipEnvelope(const std::shared_ptr<IEnvelope>& objValue) {
    Store(kClipEnvelope, clipEnvelope_, objValue);
}

std::shared_ptr<IDictionary> clsTileImage::TileObjectDict() {
    using Result = std::shared_ptr<IDictionary>;
    return Procedure<Result>(kTileObjectDict).Run([&](Statements& run, Result& result) {
        run([&] { result = tileObjectDict_; });
    });
}

void clsTileImage::GraphicFormat(const std::string& NewValue) {
    Store(kGraphicFormat, graphicFormat_, NewValue);
}

void clsTileImage::GraphicConvertProg(const std::string& NewValue) {
    Store(kGraphicConvertProg, graphicConvertProg_, NewValue);
}

void clsTileImage::GraphicQuality(Integer NewValue) {
    Store(kGraphicQuality, graphicQuality_, NewValue);
}

void clsTileImage::StatusObject(const std::shared_ptr<IStatusDisplay>& NewValue) {
    Store(kStatusObject, statusObject_, NewValue);
}

void clsTileImage::SavePath(const std::string& NewValue) {
    Store(kSavePath, savePath_, NewValue);
}

// The two size setters read like each other, axis by axis; a shared routine would hide the order of the
// steps.
void clsTileImage::TileWidth(Long Width) {
    Procedure<void>(kTileWidth).Run([&](Statements& run) {
        std::shared_ptr<IRaster> raster;
        Long C = 0;
        run([&] { tileWidth_ = Width; });
        run([&] { C = RasterOf(imageLayer_, raster).Width(); });
        if (run.Test([&] { return Width == -1; })) {
            run([&] { tilePixelWidth_ = C; });
        } else {
            run([&] { tilePixelWidth_ = RoundUp(Divide(Width, Object(raster).MeanCellSize().X)); });
        }
        if (run.Test([&] { return tileCountX_ <= 1 && tilePixelWidth_ != 0; })) {
            run([&] { tileCountX_ = TilesToCover(C, tilePixelWidth_); });
        }
    });
}

void clsTileImage::TileHeight(Long Height) {
    Procedure<void>(kTileHeight).Run([&](Statements& run) {
        std::shared_ptr<IRaster> raster;
        Long C = 0;
        run([&] { tileHeight_ = Height; });
        run([&] { C = RasterOf(imageLayer_, raster).Height(); });
        if (run.Test([&] { return Height == -1; })) {
            run([&] { tilePixelHeight_ = C; });
        } else {
            run([&] { tilePixelHeight_ = RoundUp(Divide(Height, Object(raster).MeanCellSize().Y)); });
        }
        if (run.Test([&] { return tileCountY_ <= 1 && tilePixelHeight_ != 0; })) {
            run([&] { tileCountY_ = TilesToCover(C, tilePixelHeight_); });
        }
    });
}

}  // namespace orvo
