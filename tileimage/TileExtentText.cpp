// clsTileImage: the extent of one tile as a text.
#include "errorreport/Procedure.h"
#include "platform/Platform.h"
#include "support/Arithmetic.h"
#include "support/Text.h"
#include "tileimage/clsTileImage.h"

namespace orvo {
namespace {
constexpr ProcedureText kGetTileExtent{
    "[clsTileImage] Private Function GetTileExtent(ByVal NrX As Long, NrY As Long) As String", "clsTileImage",
    "GetTileExtent"};
}  // namespace

/// "xmin;ymin;xmax;ymax" of a tile by its 1-based column and row. Rows count upward from the top edge here,
/// unlike in Tile, and the last column and row are not shortened.
std::string clsTileImage::GetTileExtent(Long NrX, const Long& NrY) const {
    return Procedure<std::string>(kGetTileExtent).Run([&](Statements& run, std::string& result) {
        double xmin = 0;
        double ymin = 0;
        double xmax = 0;
        double ymax = 0;
        run([&] { result = "0;0;0;0"; });
        if (run.Test([&] { return tilePixelWidth_ == 0 || tilePixelHeight_ == 0; })) return;
        if (run.Test([&] { return cellSizeX_ == 0 || cellSizeY_ == 0; })) return;
        run([&] { xmin = Finite(Subtract(NrX, 1) * cellSizeX_ * tilePixelWidth_ + extentXMin_); });
        run([&] { xmax = Finite(tilePixelWidth_ * cellSizeX_ + xmin); });
        run([&] { ymin = Finite(extentYMax_ - Subtract(NrY, 1) * cellSizeY_ * tilePixelHeight_); });
        run([&] { ymax = Finite(tilePixelHeight_ * cellSizeY_ + ymin); });
        run([&] {
            const auto text = [](double v) { return NumberText(v, platform::Current().decimalSeparator); };
            result = text(xmin) + ";" + text(ymin) + ";" + text(xmax) + ";" + text(ymax);
        });
    });
}

}  // namespace orvo
