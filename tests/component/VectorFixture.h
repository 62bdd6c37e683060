// What the tests of clsTileVector share: a grid over a fake layer.
#pragma once

#include <array>

#include "platform/fake/Vector.h"
#include "tests/component/Fixture.h"
#include "tilevector/clsTileVector.h"

namespace orvo {

/// Reaches the private state of a grid.
class TileVectorProbe {
  public:
    /// Tile width and height, columns and rows.
    static std::array<Long, 4> State(const clsTileVector& grid) {
        return {grid.tileWidth_, grid.tileHeight_, grid.tileCountX_, grid.tileCountY_};
    }
    static const void* Status(const clsTileVector& grid) { return grid.statusObject_.get(); }
    static const void* Extent(const clsTileVector& grid) { return grid.layerExtent_.get(); }
};

using State = std::array<Long, 4>;

class VectorTest : public ComponentTest {
  protected:
    /// A new grid over an extent of that size with its corner at (10, 20).
    void Renew(double width, double height) {
        extent = fake::MakeEnvelope(world, {10, 20, 10 + width, 20 + height});
        grid = std::make_shared<clsTileVector>();
        grid->VectorLayer(fake::MakeVectorLayer(world, extent));
    }
    /// 3 × 2 tiles of 100 × 50 units, their heights set.
    void BuildGrid() {
        Renew(300, 100);
        grid->TileWidth(100);
        grid->TileHeight(50);
        grid->InitializeTiles();
        SetHeights(*grid);
    }
    static void SetHeights(clsTileVector& tiles) {
        for (Long y = 1; y <= tiles.TileCountY(); ++y) {
            for (Long x = 1; x <= tiles.TileCountX(); ++x) {
                const auto tile = tiles.GetTileExtent(x, y);
                tile->Height(tile->Depth());
            }
        }
    }
    State GridState() const { return TileVectorProbe::State(*grid); }
    static std::string Shown(const IEnvelope* e) {
        if (e == nullptr) return "none";
        testing::Message text;
        text << e->XMin() << " " << e->YMin() << " " << e->Width() << " " << e->Height() << " " << e->Depth();
        return text.GetString();
    }
    static std::string Shown(const std::shared_ptr<IGeometry>& geometry) {
        if (!geometry) return "none";
        testing::Message text;
        for (const auto& part : fake::ShapeOf(geometry).parts) {
            for (const auto& point : part) text << point.X << "," << point.Y << " ";
            text << "/ ";
        }
        return text.GetString();
    }

    std::shared_ptr<IEnvelope> extent;
    std::shared_ptr<clsTileVector> grid;
};

}  // namespace orvo
