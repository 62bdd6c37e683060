// What the tests of clsTileVector share: a grid over a fake layer.
#pragma once

#include "platform/fake/Vector.h"
#include "tests/component/Fixture.h"
#include "tilevector/clsTileVector.h"

namespace orvo {

/// Reaches the private state of a grid.
class TileVectorProbe {
  public:
    /// Tile width and height, columns and rows.
    static std::string Of(const clsTileVector& grid) {
        std::ostringstream state;
        state << grid.tileWidth_ << " " << grid.tileHeight_ << " " << grid.tileCountX_ << " "
              << grid.tileCountY_;
        return state.str();
    }
    static bool SharesObjects(const clsTileVector& a, const clsTileVector& b) {
        return a.layerExtent_ == b.layerExtent_ && a.statusObject_ == b.statusObject_;
    }
};

struct VectorTest : ComponentTest {
    /// A new grid over an extent of that size with its corner at (10, 20).
    void Renew(double width, double height, const std::string& steps) {
        extent = fake::MakeEnvelope(world, {10, 20, 10 + width, 20 + height});
        grid = std::make_shared<clsTileVector>();
        grid->VectorLayer(fake::MakeVectorLayer(world, extent));
        Do(steps);
    }
    /// Steps such as "w250 x4": width, height, column count (x), row count (y), initialize (i), no extent
    /// (n).
    void Do(const std::string& steps) {
        std::istringstream in(steps);
        char step = 0;
        for (Long value = 0; in >> step >> value;) {
            if (step == 'w') grid->TileWidth(value);
            if (step == 'h') grid->TileHeight(value);
            if (step == 'x') grid->TileCountX(value);
            if (step == 'y') grid->TileCountY(value);
            if (step == 'i') grid->InitializeTiles();
            if (step == 'n') grid->LayerExtent(nullptr), grid->VectorLayer(nullptr);
        }
    }
    /// 3 × 2 tiles of 100 × 50 units, their heights set.
    void BuildGrid() {
        Renew(300, 100, "w100 h50 i0");
        for (Long n = 0; n < 6; ++n) grid->GetTileExtent(n % 3 + 1, n / 3 + 1)->Height(50);
    }
    std::string Extent(Long x, Long y) { return Shown(grid->GetTileExtent(x, y)); }
    static std::string Shown(const std::shared_ptr<IEnvelope>& e) {
        if (!e) return "none";
        std::ostringstream text;
        text.precision(15);
        text << e->XMin() << " " << e->YMin() << " " << e->Width() << " " << e->Height() << " " << e->Depth();
        return text.str();
    }
    static std::string Shown(const std::shared_ptr<IGeometry>& geometry) {
        return geometry ? fake::ContentOf(geometry) : "none";
    }

    std::shared_ptr<IEnvelope> extent;
    std::shared_ptr<clsTileVector> grid;
};

}  // namespace orvo
