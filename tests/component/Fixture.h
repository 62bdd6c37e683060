// What the component's tests share: a fresh fake platform and a fresh error dialog for each test, a tiler
// over a fake raster layer, a grid over a fake vector layer.
#pragma once

#include <gmock/gmock.h>

#include <array>

#include "errorreport/Ferrow.h"
#include "errorreport/Procedure.h"
#include "platform/fake/Vector.h"
#include "platform/fake/World.h"
#include "support/Strings.h"
#include "tests/Failure.h"
#include "tests/Rows.h"
#include "tileimage/clsTileImage.h"
#include "tilevector/clsTileVector.h"

namespace orvo {

constexpr Integer kRetry = 0, kNext = 1, kLeave = 2;

/// How often the test program has allocated memory so far.
long AllocationCount();

class ComponentTest : public testing::Test {
  protected:
    ComponentTest() { NewWorld(); }
    ~ComponentTest() override {
        SetErrorDialog(nullptr);
        platform::Install({});
    }

    void NewWorld() {
        world = fake::World::Make();
        platform::Install(world->MakePlatform());
        SetErrorDialog(std::make_unique<Ferrow>());
        LangOffset() = 0;
    }
    /// Answers the first failures with these clicks, every later one with the last.
    void Answer(std::vector<Integer> clicks, Integer later = kLeave) {
        world->answer = [=, n = std::size_t{0}](const FailureView&) mutable -> std::optional<Integer> {
            return n < clicks.size() ? clicks[n++] : later;
        };
    }
    void AlwaysAnswer(Integer click) { Answer({}, click); }
    static Ferrow& Dialog() { return dynamic_cast<Ferrow&>(GlobalErrorDialog()); }
    static const CallStackList& Trace() { return Dialog().CallStackEntries(); }
    std::string ShownLabel(std::size_t n) const { return world->failures.at(n).rows[2].text; }
    /// The failures shown since the last look, as "9 GetTileID, 91 Clip".
    std::string Failures() {
        std::string all;
        for (const FailureView& shown : std::exchange(world->failures, {})) {
            const std::string& error = shown.rows[0].text;
            all += (all.empty() ? "" : ", ") + error.substr(0, error.find('(')) + shown.rows[2].text;
        }
        return all;
    }

    std::shared_ptr<fake::World> world;
};

/// Reaches the private state and procedures of a tiler.
class TileImageProbe {
  public:
    explicit TileImageProbe(clsTileImage& tiler) : tiler_(tiler) {}
    std::string ExtentText(Long x, Long y) { return tiler_.GetTileExtent(x, y); }
    /// Pixels of a tile, columns and rows.
    std::array<Long, 4> Grid() const {
        return {tiler_.tilePixelWidth_, tiler_.tilePixelHeight_, tiler_.tileCountX_, tiler_.tileCountY_};
    }
    /// Name, path and working extension.
    std::string Image() const {
        return tiler_.imageName_ + " " + tiler_.imagePath_ + " " + tiler_.workingExtension_;
    }
    /// Left and upper edge, size of a cell.
    std::array<double, 4> Place() const {
        return {tiler_.extentXMin_, tiler_.extentYMax_, tiler_.cellSizeX_, tiler_.cellSizeY_};
    }
    bool IsBound() const { return tiler_.imageLayer_ != nullptr; }

  private:
    clsTileImage& tiler_;
};

struct TileTest : ComponentTest {
    TileTest() { Renew(); }
    /// A new tiler with usual settings and no layer.
    void Renew() {
        world->PutFile("C:\\img\\ortho.png", "picture");
        tiler = std::make_unique<clsTileImage>();
        status = std::make_shared<fake::StatusDisplay>(world);
        tiler->SavePath("C:\\out");
        tiler->GraphicFormat("PNG");
        tiler->GraphicConvertProg("convert.exe");
        tiler->GraphicQuality(75);
        tiler->StatusObject(status);
        facts = {};
    }
    void BindLayer(const std::string& file = "") {
        tiler->ImageLayer(fake::MakeRasterLayer(world, facts), file);
    }
    /// Binds the layer of `facts`, whose file is there, and sets square tiles.
    void Bind(Long size) {
        if (!world->HasFile(facts.filePath)) world->PutFile(facts.filePath, "picture");
        BindLayer();
        tiler->TileWidth(size);
        tiler->TileHeight(size);
    }
    /// The messages shown since the last look; all are critical.
    std::string Messages() {
        std::string all;
        for (const fake::Message& shown : std::exchange(world->messages, {}))
            all += shown.icon == MessageIcon::Critical ? shown.title + ": " + shown.text : "not critical";
        return all;
    }
    TileImageProbe Probe() { return TileImageProbe(*tiler); }

    std::unique_ptr<clsTileImage> tiler;
    std::shared_ptr<fake::StatusDisplay> status;
    fake::LayerFacts facts;
};

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
