// clsTileVector: creation, release, extent, sizes and counts.
#include "errorreport/Procedure.h"
#include "platform/Platform.h"
#include "support/Arithmetic.h"
#include "support/Strings.h"
#include "tilevector/TileArray.h"
#include "tilevector/clsTileVector.h"

namespace orvo {
namespace {

constexpr ProcedureText kInitialize{"[clsTileVector] Private Sub Class_Initialize()", "clsTileVector",
                                    "Class_Initialize"};
constexpr ProcedureText kTerminate{"[clsTileVector] Private Sub Class_Terminate()", "clsTileVector",
                                   "Class_Terminate"};
constexpr ProcedureText kId{"[clsTileVector] Public Property Let ID(ByVal strNewValue As String)",
                            "clsTileVector", "ID [LET]"};
constexpr ProcedureText kStatusObject{"[clsTileVector] Public Property Set StatusObject(NewValue As Object)",
                                      "clsTileVector", "StatusObject [SET]"};
/// Of LayerExtent too, which names itself like VectorLayer.
constexpr ProcedureText kVectorLayer{
    "[clsTileVector] Public Property Set VectorLayer(NewValue As esriCarto.ILayer)", "clsTileVector",
    "VectorLayer [SET]"};
constexpr ProcedureText kTileCountXLet{"[clsTileVector] Public Property Let TileCountX(ByVal CountX As Long)",
                                       "clsTileVector", "TileCountX [LET]"};
constexpr ProcedureText kTileCountXGet{"[clsTileVector] Public Property Get TileCountX() As Long",
                                       "clsTileVector", "TileCountX [GET]"};
constexpr ProcedureText kTileCountYLet{"[clsTileVector] Public Property Let TileCountY(ByVal CountY As Long)",
                                       "clsTileVector", "TileCountY [LET]"};
constexpr ProcedureText kTileCountYGet{"[clsTileVector] Public Property Get TileCountY() As Long",
                                       "clsTileVector", "TileCountY [GET]"};
constexpr ProcedureText kTileWidth{"[clsTileVector] Public Property Let TileWidth(ByVal Width As Long)",
                                   "clsTileVector", "TileWidth [LET]"};
constexpr ProcedureText kTileHeight{"[clsTileVector] Public Property Let TileHeight(ByVal Height As Long)",
                                    "clsTileVector", "TileHeight [LET]"};

}  // namespace

clsTileVector::clsTileVector() {
    Procedure<void>(kInitialize).Run([&](Statements& run) {
        std::shared_ptr<IUtilTools> tools;
        run([&] { tileCountX_ = 1; });
        run([&] { tileCountY_ = 1; });
        run([&] { tileWidth_ = 0; });
        run([&] { tileHeight_ = 0; });
        run([&] { tools = platform::Create(platform::Current().newUtilTools); });
        run([&] { LangOffset() = Object(tools).GetLanguageOffset(); });
        run([&] { tools.reset(); });
    });
}

// Asking a grid that was never initialized for its bounds fails, and that failure is shown like any other.
clsTileVector::~clsTileVector() {
    try {
        Procedure<void>(kTerminate).Run([&](Statements& run) {
            Long i = 0;
            Long j = 0;
            run([&] { layerExtent_.reset(); });
            run.For(
                i, 0, [&] { return Tiles().LastColumn(); },
                [&] {
                    run.For(
                        j, 0, [&] { return Tiles().LastRow(); },
                        [&] { run([&] { Tiles().At(i, j).reset(); }); });
                });
        });
    } catch (...) {
        // A destructor lets nothing out; the members release what they still hold.
    }
}

void clsTileVector::Id(const std::string& strNewValue) {
    Procedure<void>(kId).Run([&](Statements& run) { run([&] { id_ = strNewValue; }); });
}

void clsTileVector::StatusObject(const std::shared_ptr<IStatusDisplay>& NewValue) {
    Procedure<void>(kStatusObject).Run([&](Statements& run) { run([&] { statusObject_ = NewValue; }); });
}

void clsTileVector::LayerExtent(const std::shared_ptr<IEnvelope>& NewValue) {
    Procedure<void>(kVectorLayer).Run([&](Statements& run) { run([&] { layerExtent_ = NewValue; }); });
}

void clsTileVector::VectorLayer(const std::shared_ptr<ILayer>& NewValue) {
    Procedure<void>(kVectorLayer).Run([&](Statements& run) {
        if (run.Test([&] { return NewValue != nullptr; })) {
            run([&] { layerExtent_ = Object(NewValue).AreaOfInterest(); });
        }
    });
}

void clsTileVector::TileCountX(Long CountX) {
    Procedure<void>(kTileCountXLet).Run([&](Statements& run) {
        run([&] { tileCountX_ = CountX; });
        if (run.Test([&] { return layerExtent_ != nullptr; })) {
            run([&] { tileWidth_ = RoundUp(Divide(Object(layerExtent_).Width(), tileCountX_)); });
        }
    });
}

Long clsTileVector::TileCountX() const {
    return Procedure<Long>(kTileCountXGet).Run([&](Statements& run, Long& result) {
        run([&] { result = tileCountX_; });
    });
}

void clsTileVector::TileCountY(Long CountY) {
    Procedure<void>(kTileCountYLet).Run([&](Statements& run) {
        run([&] { tileCountY_ = CountY; });
        if (run.Test([&] { return layerExtent_ != nullptr; })) {
            // Into the width, on purpose: who configures by counts sets the tile height.
            run([&] { tileWidth_ = RoundUp(Divide(Object(layerExtent_).Height(), tileCountY_)); });
        }
    });
}

Long clsTileVector::TileCountY() const {
    return Procedure<Long>(kTileCountYGet).Run([&](Statements& run, Long& result) {
        run([&] { result = tileCountY_; });
    });
}

void clsTileVector::TileWidth(Long Width) {
    Procedure<void>(kTileWidth).Run([&](Statements& run) {
        Long wholeWidth = 0;
        if (!run.Test([&] { return layerExtent_ != nullptr; })) return;
        run([&] { wholeWidth = ToLong(Object(layerExtent_).Width()); });
        if (run.Test([&] { return Width == -1; })) {
            run([&] { tileWidth_ = wholeWidth; });
        } else {
            run([&] { tileWidth_ = Width; });
        }
        if (run.Test([&] { return tileCountX_ <= 1 && tileWidth_ != 0; })) {
            run([&] { tileCountX_ = TilesToCover(wholeWidth, tileWidth_); });
        }
    });
}

void clsTileVector::TileHeight(Long Height) {
    Procedure<void>(kTileHeight).Run([&](Statements& run) {
        Long wholeHeight = 0;
        if (!run.Test([&] { return layerExtent_ != nullptr; })) return;
        run([&] { wholeHeight = ToLong(Object(layerExtent_).Height()); });
        if (run.Test([&] { return Height == -1; })) {
            run([&] { tileHeight_ = wholeHeight; });
        } else {
            run([&] { tileHeight_ = Height; });
        }
        if (run.Test([&] { return tileCountY_ <= 1 && tileHeight_ != 0; })) {
            run([&] { tileCountY_ = TilesToCover(wholeHeight, tileHeight_); });
        }
    });
}

/// The records; number 9 where the grid was never initialized.
TileArray& clsTileVector::Tiles() const {
    if (!tiles_) throw RuntimeError(Fault::SubscriptOutOfRange);
    return *tiles_;
}

}  // namespace orvo
